// The controller that touches nothing: it logs each call, waits a little as if it took over a fan, and
// moves its state through the steps that the real one shows.
#pragma once

#include "core/ControlContract.h"
#include "runtime/Clock.h"

#include <cstddef>
#include <functional>
#include <limits>
#include <string>
#include <vector>

namespace ventolith::core {

class PreviewController final : public FanControlling {
public:
  static constexpr runtime::Duration defaultAcquireDelay = std::chrono::milliseconds(400);

  static constexpr std::size_t unlimited = std::numeric_limits<std::size_t>::max();

  /// `print` receives each diagnostic line, without a line feed. A process that stays limits the log, which
  /// then loses its oldest entries.
  PreviewController(const runtime::Executor& executor, runtime::Clock& clock,
                    std::function<void(const std::string&)> print,
                    runtime::Duration simulatedAcquireDelay = defaultAcquireDelay,
                    std::size_t logLimit = unlimited);

  runtime::Async<ControlResult> setManual(FanID fan, std::int64_t rpm) override;
  runtime::Async<ControlResult> setPercent(FanID fan, double percent) override;
  runtime::Async<ControlResult> fullBlast() override;
  runtime::Async<ControlResult> applyPlan(FanControlPlan plan) override;
  runtime::Async<ControlResult> automatic() override;
  runtime::Async<void> restoreAuto() override;
  runtime::Async<void> heartbeat() override;
  ControlStateStream& stateStream() override { return stateStream_; }

  /// The last whole-controller mode.
  [[nodiscard]] ControlMode mode() const { return mode_; }
  /// One entry a call, oldest first.
  [[nodiscard]] const std::vector<std::string>& log() const { return log_; }

private:
  struct Command {
    std::string entry;               // For the log.
    std::optional<ControlMode> mode; // The whole-controller mode afterwards; none leaves it.
    bool isHolding;                  // What the state says at the end.
    std::function<void(ControlState& held)> hold;
  };

  runtime::Async<ControlResult> takeOver(Command command);
  runtime::Async<void> giveBack(std::string entry);
  void record(std::string text);
  void setState(ControlState state);

  runtime::SerialExecutor serial_;
  runtime::Clock& clock_;
  std::function<void(const std::string&)> print_;
  runtime::Duration simulatedAcquireDelay_;
  std::size_t logLimit_;
  ControlMode mode_ = ControlMode::automatic;
  std::vector<std::string> log_;
  ControlStateStream stateStream_;
  ControlState state_ = ControlState::idle;
};

} // namespace ventolith::core
