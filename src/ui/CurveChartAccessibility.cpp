#include "ui/CurveChartAccessibility.h"

#include "ui/CurveChart.h"
#include "ui/state/CurveEditingTexts.h"

#include <QAccessible>
#include <QAccessibleWidget>
#include <QCoreApplication>
#include <QPointer>

#include <algorithm>
#include <cmath>
#include <vector>

namespace ventolith::ui {

namespace {

class Spoken {
  Q_DECLARE_TR_FUNCTIONS(CurveChart)
};

const CurvePoints noPoints;

const CurvePoints& pointsOf(const CurveChart& chart) {
  return chart.editing() != nullptr ? chart.editing()->editingCurve().points : noPoints;
}

std::optional<std::size_t> chosenIn(const CurveChart& chart) {
  return chart.editing() != nullptr ? chart.editing()->selectedPlace() : std::nullopt;
}

/// The point at a place of the curve, whichever that is at the time. Its number is the speed: increasing and
/// decreasing it moves the point up and down.
class CurvePointAccessible final : public QAccessibleInterface,
                                   public QAccessibleValueInterface,
                                   public QAccessibleActionInterface {
public:
  CurvePointAccessible(CurveChart& chart, std::size_t place) : chart_(&chart), place_(place) {}

  [[nodiscard]] bool isValid() const override {
    return chart_ != nullptr && place_ < pointsOf(*chart_).size();
  }
  [[nodiscard]] QObject* object() const override { return nullptr; }
  [[nodiscard]] QWindow* window() const override {
    return chart_ != nullptr ? chart_->window()->windowHandle() : nullptr;
  }
  [[nodiscard]] QAccessibleInterface* parent() const override {
    return QAccessible::queryAccessibleInterface(chart_);
  }
  [[nodiscard]] QAccessibleInterface* child(int) const override { return nullptr; }
  [[nodiscard]] int childCount() const override { return 0; }
  int indexOfChild(const QAccessibleInterface*) const override { return -1; }
  [[nodiscard]] QAccessibleInterface* childAt(int, int) const override { return nullptr; }
  [[nodiscard]] QAccessible::Role role() const override { return QAccessible::Slider; }

  [[nodiscard]] QRect rect() const override {
    if (!isValid()) return {};
    const QRect halo = chart_->haloAt(place_).toAlignedRect();
    return {chart_->mapToGlobal(halo.topLeft()), halo.size()};
  }

  [[nodiscard]] QString text(QAccessible::Text type) const override {
    if (!isValid()) return {};
    const CurvePoints& points = pointsOf(*chart_);
    switch (type) {
    case QAccessible::Name: return spokenPointName(place_, points.size());
    // Not every screen reader asks a slider for its value in words.
    case QAccessible::Value:
    case QAccessible::Description: return spokenPointValue(points[place_]);
    default: return {};
    }
  }
  void setText(QAccessible::Text, const QString&) override {}

  [[nodiscard]] QAccessible::State state() const override {
    QAccessible::State state;
    if (!isValid()) {
      state.invalid = true;
      return state;
    }
    const bool isChosen = chosenIn(*chart_) == place_;
    state.focusable = true;
    state.selectable = true;
    state.selected = isChosen;
    state.focused = isChosen && chart_->hasFocus();
    state.invisible = !chart_->isVisible();
    state.disabled = !chart_->isEnabled();
    return state;
  }

  void* interface_cast(QAccessible::InterfaceType type) override {
    if (type == QAccessible::ValueInterface) return static_cast<QAccessibleValueInterface*>(this);
    if (type == QAccessible::ActionInterface) return static_cast<QAccessibleActionInterface*>(this);
    return nullptr;
  }

  [[nodiscard]] QVariant currentValue() const override {
    return isValid() ? pointsOf(*chart_)[place_].percent : 0.0;
  }
  [[nodiscard]] QVariant minimumValue() const override { return yDomain.lower; }
  [[nodiscard]] QVariant maximumValue() const override { return yDomain.upper; }
  [[nodiscard]] QVariant minimumStepSize() const override { return percentStep; }
  void setCurrentValue(const QVariant& value) override {
    if (!isValid()) return;
    const double way =
        std::clamp(value.toDouble(), yDomain.lower, yDomain.upper) - pointsOf(*chart_)[place_].percent;
    const auto steps = static_cast<int>(std::lround(std::abs(way) / percentStep));
    chart_->movePoint(place_, way > 0 ? Nudge::faster : Nudge::slower, steps);
  }

  [[nodiscard]] QStringList actionNames() const override {
    return {pressAction(), setFocusAction(), increaseAction(), decreaseAction()};
  }
  void doAction(const QString& name) override {
    if (!isValid()) return;
    if (name == increaseAction()) return chart_->movePoint(place_, Nudge::faster, 1);
    if (name == decreaseAction()) return chart_->movePoint(place_, Nudge::slower, 1);
    if (name == setFocusAction()) chart_->setFocus(Qt::OtherFocusReason);
    if (name == setFocusAction() || name == pressAction()) chart_->choosePoint(place_);
  }
  [[nodiscard]] QStringList keyBindingsForAction(const QString&) const override { return {}; }

private:
  QPointer<CurveChart> chart_;
  std::size_t place_;
};

class CurveChartAccessible final : public QAccessibleWidget {
public:
  explicit CurveChartAccessible(CurveChart& chart)
      : QAccessibleWidget(&chart, QAccessible::Chart), chart_(chart) {}
  ~CurveChartAccessible() override {
    for (const QAccessible::Id id : children_)
      QAccessible::deleteAccessibleInterface(id);
  }

  int childCount() const override { return static_cast<int>(pointsOf(chart_).size()); }
  QAccessibleInterface* child(int index) const override {
    if (index < 0 || index >= childCount()) return nullptr;
    while (static_cast<int>(children_.size()) <= index) {
      // Qt keeps what is registered with it.
      children_.push_back(
          QAccessible::registerAccessibleInterface(new CurvePointAccessible(chart_, children_.size())));
    }
    return QAccessible::accessibleInterface(children_[static_cast<std::size_t>(index)]);
  }
  int indexOfChild(const QAccessibleInterface* child) const override {
    for (int index = 0; index < childCount(); ++index) {
      if (this->child(index) == child) return index;
    }
    return -1;
  }
  QAccessibleInterface* childAt(int x, int y) const override {
    for (int index = 0; index < childCount(); ++index) {
      if (child(index)->rect().contains(x, y)) return child(index);
    }
    return nullptr;
  }
  QAccessibleInterface* focusChild() const override {
    const std::optional<std::size_t> chosen = chosenIn(chart_);
    return chart_.hasFocus() && chosen ? child(static_cast<int>(*chosen)) : nullptr;
  }

  QString text(QAccessible::Text type) const override {
    switch (type) {
    case QAccessible::Name: return Spoken::tr("Temperature to speed curve");
    case QAccessible::Value: return allPoints();
    case QAccessible::Description:
      return Spoken::tr("Tab goes from point to point. The arrow keys move a point, Delete takes it away, "
                        "plus adds one.");
    default: return QAccessibleWidget::text(type);
    }
  }

private:
  [[nodiscard]] QString allPoints() const {
    QStringList values;
    for (const core::CurvePoint& point : pointsOf(chart_))
      values.append(spokenPointValue(point));
    return values.join(QStringLiteral("; "));
  }

  CurveChart& chart_;
  mutable std::vector<QAccessible::Id> children_; // Made as they are asked for.
};

QAccessibleInterface* makeInterface(const QString&, QObject* object) {
  auto* chart = qobject_cast<CurveChart*>(object);
  return chart != nullptr ? new CurveChartAccessible(*chart) : nullptr; // Qt keeps and deletes it.
}

QAccessibleInterface* chosenChild(CurveChart& chart) {
  const std::optional<std::size_t> chosen = chosenIn(chart);
  QAccessibleInterface* interface = QAccessible::queryAccessibleInterface(&chart);
  return interface != nullptr && chosen ? interface->child(static_cast<int>(*chosen)) : nullptr;
}

void announceMoved(CurveChart& chart) {
  QAccessibleInterface* point = chosenChild(chart);
  if (point == nullptr) return;
  QAccessibleValueChangeEvent moved(point, point->valueInterface()->currentValue());
  QAccessible::updateAccessibility(&moved);
  QAccessibleEvent described(point, QAccessible::DescriptionChanged);
  QAccessible::updateAccessibility(&described);
}

} // namespace

void installCurveChartAccessibility() {
  static const bool isInstalled = [] {
    QAccessible::installFactory(makeInterface);
    return true;
  }();
  static_cast<void>(isInstalled);
}

void announceChosen(CurveChart& chart) {
  if (!QAccessible::isActive()) return;
  QAccessibleInterface* point = chosenChild(chart);
  if (point == nullptr) return;
  QAccessibleEvent chosen(point, chart.hasFocus() ? QAccessible::Focus : QAccessible::Selection);
  QAccessible::updateAccessibility(&chosen);
}

ChartChange changeBetween(const CurveChartMarks& before, const CurveChartMarks& now) {
  if (before.points.size() != now.points.size()) return ChartChange::number;
  if (before.selected == now.selected) return ChartChange::nothing;
  return before.points == now.points ? ChartChange::choice : ChartChange::value;
}

void announceMarks(CurveChart& chart, const CurveChartMarks& before, const CurveChartMarks& now) {
  if (!QAccessible::isActive()) return;
  switch (changeBetween(before, now)) {
  case ChartChange::nothing: return;
  case ChartChange::choice: return announceChosen(chart);
  case ChartChange::value: return announceMoved(chart);
  case ChartChange::number:
    QAccessibleEvent reordered(&chart, QAccessible::ObjectReorder);
    QAccessible::updateAccessibility(&reordered);
    return announceChosen(chart);
  }
}

} // namespace ventolith::ui
