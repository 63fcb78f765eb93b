#include "ui/RulesAccessibility.h"

#include "ui/RuleRow.h"
#include "ui/RulesList.h"

#include <QAccessibleWidget>
#include <QCoreApplication>

namespace ventolith::ui {
namespace {

class RuleRowAccessible final : public QAccessibleWidget {
  Q_DECLARE_TR_FUNCTIONS(RuleRow)

public:
  explicit RuleRowAccessible(RuleRow& row) : QAccessibleWidget(&row, QAccessible::ListItem), row_(row) {}

  [[nodiscard]] QStringList actionNames() const override {
    QStringList names;
    if (canMove(RulesList::Step::up)) names << moveUpAction();
    if (canMove(RulesList::Step::down)) names << moveDownAction();
    return names << QAccessibleWidget::actionNames();
  }

  [[nodiscard]] QString localizedActionName(const QString& name) const override {
    if (name == moveUpAction()) return tr("Move up");
    if (name == moveDownAction()) return tr("Move down");
    return QAccessibleWidget::localizedActionName(name);
  }

  void doAction(const QString& name) override {
    if (list() == nullptr) return;
    if (name == moveUpAction()) return list()->moveRow(row_, RulesList::Step::up);
    if (name == moveDownAction()) return list()->moveRow(row_, RulesList::Step::down);
    QAccessibleWidget::doAction(name);
  }

private:
  static QString moveUpAction() { return QStringLiteral("Move up"); }
  static QString moveDownAction() { return QStringLiteral("Move down"); }

  [[nodiscard]] RulesList* list() const { return qobject_cast<RulesList*>(row_.parentWidget()); }
  [[nodiscard]] bool canMove(RulesList::Step step) const {
    return list() != nullptr && list()->canMove(row_, step);
  }

  RuleRow& row_;
};

QAccessibleInterface* makeInterface(const QString&, QObject* object) {
  // Qt keeps and deletes what is made here.
  if (auto* row = qobject_cast<RuleRow*>(object)) return new RuleRowAccessible(*row);
  if (auto* list = qobject_cast<RulesList*>(object)) return new QAccessibleWidget(list, QAccessible::List);
  return nullptr;
}

} // namespace

void installRulesAccessibility() {
  static const bool isInstalled = [] {
    QAccessible::installFactory(makeInterface);
    return true;
  }();
  static_cast<void>(isInstalled);
}

} // namespace ventolith::ui
