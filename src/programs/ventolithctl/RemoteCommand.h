// Commands that the helper carries out.
#pragma once

#include "programs/ventolithctl/HelperLine.h"

#include <functional>
#include <string>

namespace ventolith::ctl {

/// One command, and what is said of it when it took effect.
struct RemoteCommand {
  enum class Lasts { onlyWithHeartbeats, byItself };

  std::function<runtime::Async<core::ControlResult>(core::FanControlling&)> send;
  std::string done;
  Lasts lasts = Lasts::byItself;
};

/// Sends it and tells how it ended. Fails with CommandError unless it was applied.
runtime::Async<ExitStatus> runRemoteCommand(RemoteCommand command, Context& context);

/// Says so if a helper that was of the build `build` before is still not of this program's.
runtime::Async<void> warnOfOtherBuild(HelperLine& line, std::string build, Context& context);

/// `result` as the end of a command, with what the helper's state says of it. Its text is for people.
runtime::Async<CommandError> commandError(HelperLine& line, core::ControlResult result, Context& context);

} // namespace ventolith::ctl
