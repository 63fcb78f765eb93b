#include "ui/kit/Pulse.h"

#include <QTimerEvent>

#include <utility>

namespace ventolith::ui {

void TimerPulse::after(std::chrono::milliseconds wait, std::function<void()> then) {
  then_ = std::move(then);
  timer_.start(static_cast<int>(wait.count()), this);
}

void TimerPulse::cancel() {
  timer_.stop();
  then_ = nullptr;
}

void TimerPulse::timerEvent(QTimerEvent* event) {
  if (event->timerId() != timer_.timerId()) return;
  timer_.stop();
  // What is called may start the next wait, or let go of this pulse with its control.
  const auto then = std::exchange(then_, nullptr);
  if (then) then();
}

} // namespace ventolith::ui
