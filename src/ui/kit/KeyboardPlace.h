// Where the keyboard is while the control that had it cannot be used.
#pragma once

#include <QtGlobal>

QT_BEGIN_NAMESPACE
class QWidget;
QT_END_NAMESPACE

namespace ventolith::ui {

/// Qt passes the keyboard of a control that is disabled on to the next one, and the key that is pressed
/// again, or still held, would hit that. A control that is disabled through its place keeps the place: nobody
/// has the keyboard until the user chooses another control, or this one is enabled again and takes it back.
class KeyboardPlace {
public:
  /// `control` outlives it.
  explicit KeyboardPlace(QWidget& control) : control_(control) {}

  void setEnabled(bool isEnabled);

private:
  [[nodiscard]] QWidget* holder() const;
  void keep();
  void takeBack();

  QWidget& control_;
  bool isKept_ = false;
};

} // namespace ventolith::ui
