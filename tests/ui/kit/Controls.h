// What the tests of the controls share: a window, a pulse that beats by hand, and a record of what was said.
#pragma once

#include "ui/kit/Pulse.h"
#include "ui/kit/Theme.h"

#include <QAccessible>
#include <QApplication>
#include <QSignalSpy>
#include <QTest>
#include <QVBoxLayout>
#include <QWidget>

#include <gtest/gtest.h>

#include <chrono>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace ventolith::ui {

class ManualPulse final : public Pulse {
public:
  void after(std::chrono::milliseconds wait, std::function<void()> then) override {
    wait_ = wait;
    then_ = std::move(then);
  }
  void cancel() override { then_ = nullptr; }

  [[nodiscard]] bool isWaiting() const { return then_ != nullptr; }
  [[nodiscard]] std::chrono::milliseconds wait() const { return wait_; }
  void beat() {
    const auto then = std::exchange(then_, nullptr);
    if (then) then();
  }

private:
  std::chrono::milliseconds wait_{};
  std::function<void()> then_;
};

/// Gives the window the keyboard, and no control of it. The platform's word of it is on its way already.
inline void activate(QWidget& window) {
  window.activateWindow();
  QApplication::processEvents();
  if (!window.isActiveWindow()) ADD_FAILURE() << "the window got no keyboard";
  if (QWidget* first = QApplication::focusWidget()) first->clearFocus();
}

/// An active window without motion; what is put into it stands in a column.
class Stage {
public:
  Stage() {
    theme.force({.reduceMotion = true});
    window.setLayout(new QVBoxLayout);
    window.layout()->setContentsMargins(20, 20, 20, 20);
  }

  template <class Control, class... Given>
  Control& put(Given&&... given) {
    auto* control = new Control(theme, std::forward<Given>(given)...);
    window.layout()->addWidget(control);
    return *control;
  }
  void show() {
    window.show();
    activate(window);
  }

  Theme theme;
  QWidget window;
};

/// As `color` comes back from a picture.
inline QColor inPicture(const QColor& color) {
  return QColor(color.rgba());
}

inline QAccessibleInterface& spoken(QWidget& control) {
  return *QAccessible::queryAccessibleInterface(&control);
}

inline void turnWheel(QWidget& control, int eighths) {
  const QPointF place(control.rect().center());
  QWheelEvent event(place, control.mapToGlobal(place), QPoint(), QPoint(0, eighths), Qt::NoButton,
                    Qt::NoModifier, Qt::NoScrollPhase, false);
  QApplication::sendEvent(&control, &event);
}

inline void enter(QWidget& control) {
  const QPointF place(1, 1);
  QEnterEvent event(place, place, place);
  QApplication::sendEvent(&control, &event);
}

inline void leave(QWidget& control) {
  QEvent event(QEvent::Leave);
  QApplication::sendEvent(&control, &event);
}

} // namespace ventolith::ui
