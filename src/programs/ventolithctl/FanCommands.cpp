#include "programs/ventolithctl/FanCommands.h"

#include "core/Visitor.h"
#include "programs/ventolithctl/FanSpeed.h"
#include "programs/ventolithctl/RemoteCommand.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include <memory>

namespace ventolith::ctl {

using core::ControlResult;
using core::FanControlling;
using runtime::Async;

namespace {

struct SetOptions {
  std::string fan;
  std::string speed;
};

Async<ControlResult> sendSpeed(FanControlling& controller, core::FanID fan, const FanSpeed& speed) {
  return std::visit(core::Visitor{[&](RPM rpm) { return controller.setManual(fan, rpm.value); },
                                  [&](Percent percent) { return controller.setPercent(fan, percent.value); }},
                    speed);
}

Async<ExitStatus> set(SetOptions options, Context& context) {
  const core::FanID fan = readFanNumber(options.fan);
  const FanSpeed speed = readFanSpeed(options.speed);
  co_return co_await runRemoteCommand(
      {.send = [fan, speed](FanControlling& controller) { return sendSpeed(controller, fan, speed); },
       .done = fmt::format("Fan {} is held at {}, or as near as its range allows.", fan, speedText(speed)),
       .lasts = RemoteCommand::Lasts::onlyWithHeartbeats},
      context);
}

void addSet(CLI::App& app, Context& context) {
  auto* command = app.add_subcommand("set", "Hold one fan at a speed, by way of the helper");
  const auto options = std::make_shared<SetOptions>();
  command->add_option("FAN", options->fan, "The fan's number, as snapshot shows it")->required();
  command
      ->add_option("SPEED", options->speed,
                   "RPM, such as 2400, or a percentage of the fan's range, such as 45%")
      ->required();
  command->footer(
      "The other fans stay as they are. The fan goes back to the firmware after 15 s without heartbeats,\n"
      "which the application sends, and apply --hold.");
  command->callback(
      [&context, options] { context.command = [&context, options] { return set(*options, context); }; });
}

void addFullBlast(CLI::App& app, Context& context) {
  auto* command = app.add_subcommand("full-blast", "Hold every fan at its maximum, by way of the helper");
  command->footer(
      "The fans go back to the firmware after 15 s without heartbeats, which the application sends, and\n"
      "apply --hold.");
  command->callback([&context] {
    context.command = [&context] {
      return runRemoteCommand({.send = [](FanControlling& controller) { return controller.fullBlast(); },
                               .done = "Every fan is held at its maximum.",
                               .lasts = RemoteCommand::Lasts::onlyWithHeartbeats},
                              context);
    };
  });
}

void addAuto(CLI::App& app, Context& context) {
  auto* command = app.add_subcommand("auto", "Give every fan back to the firmware, by way of the helper");
  command->footer("A fan that refuses is tried again by the helper, every 2 seconds.");
  command->callback([&context] {
    context.command = [&context] {
      return runRemoteCommand({.send = [](FanControlling& controller) { return controller.automatic(); },
                               .done = "Every fan is back with the firmware.",
                               .lasts = RemoteCommand::Lasts::byItself},
                              context);
    };
  });
}

} // namespace

void addFanCommands(CLI::App& app, Context& context) {
  addSet(app, context);
  addFullBlast(app, context);
  addAuto(app, context);
}

} // namespace ventolith::ctl
