// The ten messages that an application sends to the helper, and what comes back. Nothing else crosses the
// line between the two processes.
#pragma once

#include "core/FanControlPlan.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <variant>

namespace ventolith::helper {

namespace messages {

/// Which build is the helper? Answered by a Version.
struct HelperVersion {
  bool operator==(const HelperVersion&) const = default;
};
/// Give the fans back and end, so that the build that is installed now can start. Answered by Done.
struct ShutdownForUpgrade {
  bool operator==(const ShutdownForUpgrade&) const = default;
};
/// Answered by a Code, as all commands are.
struct SetManualRPM {
  core::FanID fan = 0;
  std::int64_t rpm = 0;
  bool operator==(const SetManualRPM&) const = default;
};
struct SetPercent {
  core::FanID fan = 0;
  double percent = 0;
  bool operator==(const SetPercent&) const = default;
};
struct FullBlast {
  bool operator==(const FullBlast&) const = default;
};
struct Automatic {
  bool operator==(const Automatic&) const = default;
};
struct ApplyConfig {
  std::string plan; // The JSON of a FanControlPlan, as received: it may be anything.
  bool operator==(const ApplyConfig&) const = default;
};
/// Give the fans back; nobody waits for how it went. Answered by Done.
struct RestoreAuto {
  bool operator==(const RestoreAuto&) const = default;
};
/// The client is alive. Never answered.
struct Heartbeat {
  bool operator==(const Heartbeat&) const = default;
};
/// Answered by a State.
struct ReadState {
  bool operator==(const ReadState&) const = default;
};

} // namespace messages

/// In the order of the protocol.
using HelperMessage =
    std::variant<messages::HelperVersion, messages::ShutdownForUpgrade, messages::SetManualRPM,
                 messages::SetPercent, messages::FullBlast, messages::Automatic, messages::ApplyConfig,
                 messages::RestoreAuto, messages::Heartbeat, messages::ReadState>;

namespace replies {

struct Done {
  bool operator==(const Done&) const = default;
};
struct Version {
  std::string identifier; // HelperBuildVersion::identifier of the helper.
  bool operator==(const Version&) const = default;
};
struct Code {
  std::int64_t value = 0; // ControlResult::xpcCode.
  bool operator==(const Code&) const = default;
};
struct State {
  std::string json; // Of a ControlState, as received: it may be anything.
  bool operator==(const State&) const = default;
};

} // namespace replies

using HelperReply = std::variant<replies::Done, replies::Version, replies::Code, replies::State>;

/// "SetManualRPM": for the log, and for channels that send messages by name.
[[nodiscard]] std::string_view nameOf(const HelperMessage& message);

/// Whether the message can change what the fans do or end the helper; such a message needs permission.
[[nodiscard]] bool changesAnything(const HelperMessage& message);

} // namespace ventolith::helper
