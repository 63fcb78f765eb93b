#include "programs/ventolithctl/StatusCommand.h"

#include "programs/ventolithctl/ControlWords.h"
#include "programs/ventolithctl/DaemonWords.h"
#include "programs/ventolithctl/HelperLine.h"
#include "programs/ventolithctl/TextLayout.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include <memory>

namespace ventolith::ctl {

using helper::DaemonStatus;
using helper::HelperBuildVersion;
using runtime::Async;

namespace {

struct StatusOptions {
  bool asJSON = false;
};

enum class Presence { answers, doesNotAnswer, absent };

struct HelperStatus {
  std::optional<DaemonStatus> registration; // None if the system did not tell in time.
  Presence presence = Presence::absent;
  std::optional<std::string> build;
  std::optional<core::ControlState> state;
};

Async<std::optional<DaemonStatus>> registration(Context& context) {
  const std::shared_ptr<helper::DaemonService> service = context.daemonService();
  // An answer that is late keeps the service until it comes.
  const auto ask = [](std::shared_ptr<helper::DaemonService> asked) -> Async<DaemonStatus> {
    co_return co_await asked->status();
  };
  co_return co_await within(answerLimit, context.clock, context.stop, ask(service));
}

/// Looks, and changes nothing: a helper of another build is left running.
Async<HelperStatus> readStatus(Context& context) {
  HelperStatus status;
  status.registration = co_await registration(context);
  HelperLine line(co_await boost::asio::this_coro::executor, context, HelperLine::OtherBuild::isLeft);
  const auto build =
      co_await within(answerLimit, context.clock, context.stop, line.controller().readRemoteVersion());
  if (!build) {
    status.presence = Presence::doesNotAnswer;
    co_return status;
  }
  if (!*build) co_return status;
  status.presence = Presence::answers;
  status.build = *build;
  const auto state =
      co_await within(answerLimit, context.clock, context.stop, line.controller().readRemoteState());
  if (state) status.state = *state;
  co_return status;
}

std::string_view presenceName(Presence presence) {
  switch (presence) {
  case Presence::answers: return "answers";
  case Presence::doesNotAnswer: return "doesNotAnswer";
  case Presence::absent: return "absent";
  }
  return "";
}

template <class Value>
core::JSON orNull(const std::optional<Value>& value) {
  return value ? core::JSON(*value) : core::JSON(nullptr);
}

std::string asJSON(const HelperStatus& status) {
  core::JSON json = core::JSON::object();
  json["registration"] =
      status.registration ? core::JSON(caseName(*status.registration)) : core::JSON(nullptr);
  json["helper"] = presenceName(status.presence);
  json["build"] = orNull(status.build);
  json["ownBuild"] = HelperBuildVersion::identifier;
  json["state"] = status.state ? core::toJSON(*status.state) : core::JSON(nullptr);
  return core::writeJSON(json) + "\n";
}

std::string buildSentence(const std::string& build) {
  if (build == HelperBuildVersion::identifier)
    return fmt::format("It answers, and is build {}, as this program is.\n", build);
  return fmt::format(
      "It answers, and is build {}; this program is {}.\n\"ventolithctl helper restart\" starts the "
      "helper that is installed.\n",
      printable(build), HelperBuildVersion::identifier);
}

std::string presenceText(const HelperStatus& status) {
  constexpr std::string_view restartAdvice = "\"ventolithctl helper restart\" starts it again.\n";
  switch (status.presence) {
  case Presence::answers: return buildSentence(*status.build);
  case Presence::doesNotAnswer: return fmt::format("It does not answer.\n{}", restartAdvice);
  case Presence::absent: break;
  }
  if (status.registration == DaemonStatus::enabled) return fmt::format("It does not run.\n{}", restartAdvice);
  const auto advice = status.registration ? registrationAdvice(*status.registration) : "";
  return fmt::format("It does not run.\n{}{}", advice, advice.empty() ? "" : "\n");
}

std::string registrationText(const HelperStatus& status) {
  if (!status.registration) return "Whether the helper is installed, the system does not tell.";
  const bool isOnItsOwn =
      status.presence != Presence::absent && *status.registration != DaemonStatus::enabled;
  return isOnItsOwn ? "A helper runs that is not installed." : registrationSentence(*status.registration);
}

std::string asText(const HelperStatus& status) {
  const std::string text = registrationText(status) + "\n" + presenceText(status);
  if (status.presence != Presence::answers) return text;
  return text + (status.state ? stateSentences(*status.state) : "Its state cannot be read.\n");
}

Async<ExitStatus> status(StatusOptions options, Context& context) {
  const HelperStatus status = co_await readStatus(context);
  if (context.stop.stopRequested()) co_return ExitStatus::interrupted;
  context.out.write(options.asJSON ? asJSON(status) : asText(status));
  co_return status.presence == Presence::answers ? ExitStatus::done : ExitStatus::noHelper;
}

} // namespace

void addStatus(CLI::App& app, Context& context) {
  auto* command = app.add_subcommand("status", "Show whether there is a helper, and what it does");
  const auto options = std::make_shared<StatusOptions>();
  command->add_flag("--json", options->asJSON,
                    "One JSON object: registration, helper, build, ownBuild, state");
  command->footer("Exit status: 0 when the helper answers, 16 when it does not.");
  command->callback(
      [&context, options] { context.command = [&context, options] { return status(*options, context); }; });
}

} // namespace ventolith::ctl
