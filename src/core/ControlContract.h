// The vocabulary that every fan controller speaks.
#pragma once

#include "core/FanControlPlan.h"
#include "runtime/Async.h"
#include "runtime/StateStream.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace ventolith::core {

enum class ControlMode {
  automatic, ///< The firmware drives the fan.
  fullBlast, ///< Held at its maximum.
  manual,    ///< Held at a fixed target.
  curve,     ///< Follows a plan.
};

/// The word shown to the user.
[[nodiscard]] std::string_view label(ControlMode mode);
/// The icon beside it, a name of the platform's symbol set.
[[nodiscard]] std::string_view symbolName(ControlMode mode);
/// The case name, as in the JSON form {"manual":{}}.
[[nodiscard]] std::string_view caseName(ControlMode mode);

/// The mode under which a plan's entry is reported.
[[nodiscard]] ControlMode controlMode(const FanControlModePlan& mode);

/// The outcome of a command.
struct ControlResult {
  struct Rejected { // The SMC refused a write, with its own result byte.
    std::uint8_t code;
    bool operator==(const Rejected&) const = default;
  };
  struct Failed { // Anything else, with a text for the user.
    std::string message;
    bool operator==(const Failed&) const = default;
  };
  enum class Plain {
    applied,       ///< The command took effect.
    acquiring,     ///< Accepted; the fan is still being taken over.
    timedOut,      ///< The fan did not come under control in time.
    reclaimed,     ///< The firmware took the fan back.
    notPrivileged, ///< The process may not write to the SMC.
    noHelper,      ///< No helper daemon could be reached.
  };

  std::variant<Rejected, Failed, Plain> value;

  static const ControlResult applied;
  static const ControlResult acquiring;
  static const ControlResult timedOut;
  static const ControlResult reclaimed;
  static const ControlResult notPrivileged;
  static const ControlResult noHelper;
  [[nodiscard]] static ControlResult rejected(std::uint8_t code) { return {Rejected{code}}; }
  [[nodiscard]] static ControlResult failed(std::string message) { return {Failed{std::move(message)}}; }

  /// The integer that crosses the helper link; payloads do not travel.
  [[nodiscard]] std::int64_t xpcCode() const;
  /// The way back: a rejected comes with code 0; a code without a case of its own, 7 included, is a
  /// failed that names it.
  [[nodiscard]] static ControlResult fromXPCCode(std::int64_t code);

  /// The case name, and a payload in round brackets: rejected(code: 5), failed("x").
  [[nodiscard]] std::string text() const;

  bool operator==(const ControlResult&) const = default;
};

/// What a controller reports about itself.
struct ControlState {
  std::map<FanID, ControlMode> perFanMode; // Of each fan that the controller has touched.
  std::map<FanID, std::int64_t> targets;   // RPM held.
  bool isHolding = false;
  std::optional<std::string> lastError;
  std::optional<std::vector<FanID>> stoppedFans; // Parked at zero RPM, ascending.

  static const ControlState idle;

  bool operator==(const ControlState&) const = default;
};

[[nodiscard]] JSON toJSON(ControlMode mode);
[[nodiscard]] JSON toJSON(const ControlState& state);
[[nodiscard]] ControlMode readControlMode(const JSONReader& json);
[[nodiscard]] ControlState readControlState(const JSONReader& json);

/// A state as it travels.
[[nodiscard]] std::string encode(const ControlState& state);
/// Fails with DecodeError.
[[nodiscard]] ControlState decodeControlState(std::string_view text);

using ControlStateStream = runtime::StateStream<ControlState>;

/// A fan controller. Each is a single-threaded owner: its operations run on its own executor and give
/// it up wherever they wait, so that a second call can slip in there. None of them throws: a failure is
/// a ControlResult or, where there is no result, is swallowed.
class FanControlling {
public:
  FanControlling() = default;
  FanControlling(const FanControlling&) = delete;
  FanControlling& operator=(const FanControlling&) = delete;
  virtual ~FanControlling() = default;

  virtual runtime::Async<ControlResult> setManual(FanID fan, std::int64_t rpm) = 0;
  virtual runtime::Async<ControlResult> setPercent(FanID fan, double percent) = 0;
  virtual runtime::Async<ControlResult> fullBlast() = 0;
  virtual runtime::Async<ControlResult> applyPlan(FanControlPlan plan) = 0;

  /// The user's command to give all fans back to the firmware.
  virtual runtime::Async<ControlResult> automatic() = 0;

  /// The same, fire-and-forget, for an application that leaves.
  virtual runtime::Async<void> restoreAuto() = 0;

  /// Says that the client is alive. A controller that holds fans gives them back when this stops.
  virtual runtime::Async<void> heartbeat() = 0;

  /// Every state since the controller was made, in order, for a single reader.
  virtual ControlStateStream& stateStream() = 0;
};

} // namespace ventolith::core
