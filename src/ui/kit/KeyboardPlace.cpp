#include "ui/kit/KeyboardPlace.h"

#include <QWidget>

#include <utility>

namespace ventolith::ui {

QWidget* KeyboardPlace::holder() const {
  return control_.window()->focusWidget();
}

void KeyboardPlace::setEnabled(bool isEnabled) {
  const bool hasKeyboard = holder() == &control_;
  control_.setEnabled(isEnabled);
  if (isEnabled) return takeBack();
  if (hasKeyboard) keep();
}

void KeyboardPlace::keep() {
  isKept_ = true;
  if (QWidget* next = holder()) next->clearFocus();
}

void KeyboardPlace::takeBack() {
  if (std::exchange(isKept_, false) && holder() == nullptr) control_.setFocus(Qt::OtherFocusReason);
}

} // namespace ventolith::ui
