#include "programs/ventolithctl/RemoteCommand.h"

#include "helper/engine/LocalFanController.h"
#include "programs/ventolithctl/ControlWords.h"
#include "programs/ventolithctl/TextLayout.h"
#include "programs/ventolithctl/Warn.h"

#include <fmt/format.h>

namespace ventolith::ctl {

using core::ControlResult;
using helper::HelperBuildVersion;
using runtime::Async;

namespace {

/// Whether the state of the helper may say more than the result does.
bool hasReasonInState(const ControlResult& result) {
  return result != ControlResult::noHelper && result != ControlResult::notPrivileged &&
         result != ControlResult::acquiring;
}

} // namespace

Async<CommandError> commandError(HelperLine& line, ControlResult result, Context& context) {
  const ExitStatus status = statusOf(result);
  std::string reason = reasonText(result);
  if (!hasReasonInState(result)) co_return CommandError(status, reason);
  const auto state =
      co_await within(answerLimit, context.clock, context.stop, line.controller().readRemoteState());
  if (state && *state && (*state)->lastError)
    reason += fmt::format("; the helper's last error: {}", printable(*(*state)->lastError));
  co_return CommandError(status, reason);
}

Async<void> warnOfOtherBuild(HelperLine& line, std::string build, Context& context) {
  if (build == HelperBuildVersion::identifier) co_return;
  const auto answer =
      co_await within(answerLimit, context.clock, context.stop, line.controller().readRemoteVersion());
  if (!answer || !*answer || **answer == HelperBuildVersion::identifier) co_return;
  warn(context,
       fmt::format("the helper is build {}, this program is {}; \"ventolithctl helper restart\" starts the "
                   "helper that is installed",
                   printable(**answer), HelperBuildVersion::identifier));
}

Async<ExitStatus> runRemoteCommand(RemoteCommand command, Context& context) {
  HelperLine line(co_await boost::asio::this_coro::executor, context, HelperLine::OtherBuild::isReplaced);
  const std::string build = co_await line.requireBuild();
  const ControlResult result = co_await line.finish(command.send(line.controller()));
  co_await warnOfOtherBuild(line, build, context);
  if (result != ControlResult::applied) throw co_await commandError(line, result, context);
  context.out.write(command.done + "\n");
  if (command.lasts == RemoteCommand::Lasts::onlyWithHeartbeats) {
    context.out.write(
        fmt::format("Without heartbeats the helper gives the fans back after {} s: the application "
                    "sends them, and apply --hold.\n",
                    helper::LocalFanController::heartbeatLimitSeconds));
  }
  co_return ExitStatus::done;
}

} // namespace ventolith::ctl
