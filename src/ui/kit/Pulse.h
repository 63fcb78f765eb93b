// The little waiting that controls do: the repeat of a held arrow, the end of a burst of wheel steps.
#pragma once

#include <QBasicTimer>
#include <QObject>

#include <chrono>
#include <functional>
#include <memory>

namespace ventolith::ui {

/// One wait at a time. A control declares its waits through this, so that tests let the time pass by hand.
class Pulse {
public:
  Pulse() = default;
  Pulse(const Pulse&) = delete;
  Pulse& operator=(const Pulse&) = delete;
  virtual ~Pulse() = default;

  /// Calls `then` once after the wait, on the caller's thread. A wait that still runs is given up first.
  virtual void after(std::chrono::milliseconds wait, std::function<void()> then) = 0;
  virtual void cancel() = 0;
};

/// The pulse of real time, on Qt's event loop. It wakes nobody while nothing is waited for.
class TimerPulse final : public QObject, public Pulse {
public:
  void after(std::chrono::milliseconds wait, std::function<void()> then) override;
  void cancel() override;

protected:
  void timerEvent(QTimerEvent* event) override;

private:
  QBasicTimer timer_;
  std::function<void()> then_;
};

} // namespace ventolith::ui
