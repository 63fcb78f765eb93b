#include "ui/kit/Accessibility.h"

#include "ui/kit/MenuButton.h"
#include "ui/kit/Notices.h"
#include "ui/kit/Picker.h"
#include "ui/kit/Popover.h"
#include "ui/kit/Slider.h"
#include "ui/kit/Stepper.h"

#include <QAccessible>
#include <QAccessibleWidget>
#include <QCheckBox>
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
class MenuButtonAccessible : public QAccessibleWidget {
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

/// What is chosen can be read, too: not every system hands on a value in words.
class PickerAccessible final : public MenuButtonAccessible, public QAccessibleTextInterface {
public:
  explicit PickerAccessible(Picker& picker) : MenuButtonAccessible(picker, QAccessible::ComboBox) {}

  void* interface_cast(QAccessible::InterfaceType type) override {
    if (type == QAccessible::TextInterface) return static_cast<QAccessibleTextInterface*>(this);
    return MenuButtonAccessible::interface_cast(type);
  }

  using MenuButtonAccessible::text;
  [[nodiscard]] QString text(int start, int end) const override { return chosen().mid(start, end - start); }
  [[nodiscard]] int characterCount() const override { return static_cast<int>(chosen().size()); }
  [[nodiscard]] QRect characterRect(int) const override { return rect(); }
  [[nodiscard]] int offsetAtPoint(const QPoint&) const override { return -1; }
  [[nodiscard]] QString attributes(int, int* start, int* end) const override {
    *start = 0;
    *end = characterCount();
    return {};
  }

  // Nothing in it can be selected, and it has no caret.
  void selection(int, int* start, int* end) const override { *start = *end = 0; }
  [[nodiscard]] int selectionCount() const override { return 0; }
  void addSelection(int, int) override {}
  void removeSelection(int) override {}
  void setSelection(int, int, int) override {}
  [[nodiscard]] int cursorPosition() const override { return 0; }
  void setCursorPosition(int) override {}
  void scrollToSubstring(int, int) override {}

private:
  [[nodiscard]] QString chosen() const { return text(QAccessible::Value); }
};

/// A check box or a switch. Qt's own would only turn what it shows, and tell nobody: this one is clicked.
class ToggleAccessible final : public QAccessibleWidget {
public:
  explicit ToggleAccessible(QCheckBox& toggle)
      : QAccessibleWidget(&toggle, QAccessible::CheckBox), toggle_(toggle) {}

  [[nodiscard]] QString text(QAccessible::Text type) const override {
    const QString its = QAccessibleWidget::text(type);
    if (type != QAccessible::Name || !its.isEmpty()) return its;
    return toggle_.text().replace(QLatin1String("&&"), QLatin1String("&"));
  }

  [[nodiscard]] QAccessible::State state() const override {
    QAccessible::State state = QAccessibleWidget::state();
    state.checkable = true;
    state.checked = toggle_.isChecked();
    return state;
  }

  [[nodiscard]] QStringList actionNames() const override {
    QStringList names;
    if (toggle_.isEnabled()) names << toggleAction();
    return names << QAccessibleWidget::actionNames();
  }

  void doAction(const QString& name) override {
    if (name == toggleAction() || name == pressAction()) return toggle_.click();
    QAccessibleWidget::doAction(name);
  }

private:
  QCheckBox& toggle_;
};

template <class Widget>
bool isOf(const QString& className) {
  return className == QLatin1String(Widget::staticMetaObject.className());
}

QAccessibleInterface* makeInterface(const QString& className, QObject* object) {
  // Qt keeps and deletes what is made here.
  if (auto* slider = qobject_cast<Slider*>(object)) return new SliderAccessible(*slider);
  if (auto* stepper = qobject_cast<Stepper*>(object)) return new StepperAccessible(*stepper);
  if (auto* picker = qobject_cast<Picker*>(object)) {
    return new PickerAccessible(*picker);
  }
  if (auto* button = qobject_cast<MenuButton*>(object)) {
    return new MenuButtonAccessible(*button, QAccessible::ButtonMenu);
  }
  if (auto* toggle = qobject_cast<QCheckBox*>(object)) return new ToggleAccessible(*toggle);
  if (auto* popover = qobject_cast<Popover*>(object))
    return new QAccessibleWidget(popover, QAccessible::Dialog);
  if (auto* strip = qobject_cast<ErrorStrip*>(object))
    return new QAccessibleWidget(strip, QAccessible::AlertMessage);
  // Qt asks for each class, from the object's own to the first: what is made from a surface may be more.
  if (auto* surface = qobject_cast<Surface*>(object); surface != nullptr && isOf<Surface>(className))
    return new QAccessibleWidget(surface, QAccessible::Grouping);
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
