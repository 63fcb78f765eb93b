#include "ui/WindowAccessibility.h"

#include "ui/DashboardWindow.h"

#include <QAccessible>
#include <QAccessibleObject>
#include <QAccessibleWidget>
#include <QGuiApplication>
#include <QWindow>

#include <algorithm>
#include <vector>

namespace ventolith::ui {
namespace {

/// Those that Qt knows come first, then what has opened above them.
class ApplicationAccessible final : public QAccessibleApplication {
public:
  [[nodiscard]] int childCount() const override {
    return QAccessibleApplication::childCount() + static_cast<int>(popups().size());
  }

  [[nodiscard]] QAccessibleInterface* child(int index) const override {
    const int windows = QAccessibleApplication::childCount();
    if (index < windows) return QAccessibleApplication::child(index);
    const auto opened = popups();
    const auto place = static_cast<std::size_t>(index - windows);
    return place < opened.size() ? opened[place] : nullptr;
  }

  int indexOfChild(const QAccessibleInterface* child) const override {
    const auto opened = popups();
    const auto found = std::find(opened.begin(), opened.end(), child);
    if (found == opened.end()) return QAccessibleApplication::indexOfChild(child);
    return QAccessibleApplication::childCount() + static_cast<int>(found - opened.begin());
  }

private:
  [[nodiscard]] static std::vector<QAccessibleInterface*> popups() {
    std::vector<QAccessibleInterface*> opened;
    for (const QWindow* window : QGuiApplication::topLevelWindows()) {
      if (window->type() != Qt::Popup || !window->isVisible()) continue;
      QAccessibleInterface* const root = window->accessibleRoot();
      if (root != nullptr && root->object() != nullptr) opened.push_back(root);
    }
    return opened;
  }
};

QAccessibleInterface* makeInterface(const QString&, QObject* object) {
  // Qt keeps and deletes what is made here.
  if (object == qGuiApp) return new ApplicationAccessible;
  if (auto* window = qobject_cast<DashboardWindow*>(object))
    return new QAccessibleWidget(window, QAccessible::Window);
  return nullptr;
}

} // namespace

void installWindowAccessibility() {
  QAccessible::installFactory(makeInterface);
}

} // namespace ventolith::ui
