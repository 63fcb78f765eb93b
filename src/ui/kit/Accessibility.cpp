#include "ui/kit/Accessibility.h"

#include "ui/kit/MenuButton.h"
#include "ui/kit/Picker.h"
#include "ui/kit/Popover.h"
#include "ui/kit/Slider.h"
#include "ui/kit/Stepper.h"

#include <QAccessible>
#include <QAccessibleWidget>
#include <QLocale>

#include <cmath>

namespace ventolith::ui {
namespace {

constexpr double whole = 100;

/// A widget with a number that can be moved.
class ValueAccessible : public QAccessibleWidget, public QAccessibleValueInterface {
public:
  using QAccessibleWidget::QAccessibleWidget;

  void* interface_cast(QAccessible::InterfaceType type) override {
    if (type == QAccessible::ValueInterface) return static_cast<QAccessibleValueInterface*>(this);
    return QAccessibleWidget::interface_cast(type);
  }

  [[nodiscard]] QStringList actionNames() const override {
    QStringList names = QAccessibleWidget::actionNames();
    if (widget()->isEnabled()) names << increaseAction() << decreaseAction();
    return names;
  }

  void doAction(const QString& name) override {
    if (name == increaseAction()) return setCurrentValue(currentNumber() + minimumStepSize().toDouble());
    if (name == decreaseAction()) return setCurrentValue(currentNumber() - minimumStepSize().toDouble());
    QAccessibleWidget::doAction(name);
  }

protected:
  [[nodiscard]] double currentNumber() const {
    return const_cast<ValueAccessible*>(this)->currentValue().toDouble();
  }
};

/// In the slider's own values, or in hundredths of its way where that is what it speaks of.
class SliderAccessible final : public ValueAccessible {
public:
  explicit SliderAccessible(Slider& slider)
      : ValueAccessible(&slider, QAccessible::Slider), slider_(slider) {}

  [[nodiscard]] QString text(QAccessible::Text type) const override {
    if (type != QAccessible::Value) return QAccessibleWidget::text(type);
    return slider_.spokenText().isEmpty() ? QLocale().toString(currentNumber(), 'g', 6)
                                          : slider_.spokenText();
  }

  [[nodiscard]] QVariant currentValue() const override {
    if (!isPercent()) return slider_.value();
    return std::round(slider_.geometryOf().fraction(slider_.value()) * whole);
  }
  [[nodiscard]] QVariant minimumValue() const override { return isPercent() ? 0.0 : slider_.range().minimum; }
  [[nodiscard]] QVariant maximumValue() const override {
    return isPercent() ? whole : slider_.range().maximum;
  }
  [[nodiscard]] QVariant minimumStepSize() const override { return isPercent() ? 1.0 : slider_.keyStep(); }
  void setCurrentValue(const QVariant& value) override {
    const double number = value.toDouble();
    slider_.slideTo(isPercent() ? slider_.range().minimum + number / whole * slider_.range().span() : number);
  }

private:
  [[nodiscard]] bool isPercent() const { return slider_.spoken() == Slider::Spoken::percentOfTravel; }

  Slider& slider_;
};

class StepperAccessible final : public ValueAccessible {
public:
  explicit StepperAccessible(Stepper& stepper)
      : ValueAccessible(&stepper, QAccessible::SpinBox), stepper_(stepper) {}

  [[nodiscard]] QString text(QAccessible::Text type) const override {
    return type == QAccessible::Value ? stepper_.label() : QAccessibleWidget::text(type);
  }

  [[nodiscard]] QVariant currentValue() const override { return stepper_.value(); }
  [[nodiscard]] QVariant minimumValue() const override { return stepper_.range().minimum; }
  [[nodiscard]] QVariant maximumValue() const override { return stepper_.range().maximum; }
  [[nodiscard]] QVariant minimumStepSize() const override { return stepper_.range().step; }
  void setCurrentValue(const QVariant& value) override { stepper_.want(value.toDouble()); }

private:
  Stepper& stepper_;
};

/// A button with a menu, or a picker. What it shows is its name, unless it has another: then it is its value.
class MenuButtonAccessible final : public QAccessibleWidget {
public:
  MenuButtonAccessible(MenuButton& button, QAccessible::Role role)
      : QAccessibleWidget(&button, role), button_(button) {}

  [[nodiscard]] QString text(QAccessible::Text type) const override {
    const QString given = button_.accessibleName();
    if (type == QAccessible::Name) return given.isEmpty() && !isPicker() ? button_.title() : given;
    if (type == QAccessible::Value) return given.isEmpty() && !isPicker() ? QString() : button_.title();
    return QAccessibleWidget::text(type);
  }

  [[nodiscard]] QAccessible::State state() const override {
    QAccessible::State state = QAccessibleWidget::state();
    state.hasPopup = true;
    state.expandable = true;
    state.expanded = button_.isMenuOpen();
    state.collapsed = !button_.isMenuOpen();
    return state;
  }

  [[nodiscard]] QStringList actionNames() const override {
    QStringList names;
    if (button_.isEnabled()) names << showMenuAction() << pressAction();
    return names << QAccessibleWidget::actionNames();
  }

  void doAction(const QString& name) override {
    if (name == showMenuAction() || name == pressAction()) return button_.openMenu();
    QAccessibleWidget::doAction(name);
  }

private:
  [[nodiscard]] bool isPicker() const { return role() == QAccessible::ComboBox; }

  MenuButton& button_;
};

QAccessibleInterface* makeInterface(const QString&, QObject* object) {
  // Qt keeps and deletes what is made here.
  if (auto* slider = qobject_cast<Slider*>(object)) return new SliderAccessible(*slider);
  if (auto* stepper = qobject_cast<Stepper*>(object)) return new StepperAccessible(*stepper);
  if (auto* picker = qobject_cast<Picker*>(object)) {
    return new MenuButtonAccessible(*picker, QAccessible::ComboBox);
  }
  if (auto* button = qobject_cast<MenuButton*>(object)) {
    return new MenuButtonAccessible(*button, QAccessible::ButtonMenu);
  }
  if (auto* popover = qobject_cast<Popover*>(object))
    return new QAccessibleWidget(popover, QAccessible::Dialog);
  return nullptr;
}

} // namespace

void installAccessibility() {
  static const bool isInstalled = [] {
    QAccessible::installFactory(makeInterface);
    return true;
  }();
  static_cast<void>(isInstalled);
}

void announceValue(QWidget& control) {
  if (!QAccessible::isActive()) return;
  QAccessibleInterface* interface = QAccessible::queryAccessibleInterface(&control);
  if (interface == nullptr) return;
  QAccessibleValueInterface* its = interface->valueInterface();
  QAccessibleValueChangeEvent event(&control, its != nullptr ? its->currentValue()
                                                             : QVariant(interface->text(QAccessible::Value)));
  QAccessible::updateAccessibility(&event);
}

void announceExpanded(QWidget& control) {
  if (!QAccessible::isActive()) return;
  QAccessible::State changed;
  changed.expanded = true;
  changed.collapsed = true;
  QAccessibleStateChangeEvent event(&control, changed);
  QAccessible::updateAccessibility(&event);
}

} // namespace ventolith::ui
