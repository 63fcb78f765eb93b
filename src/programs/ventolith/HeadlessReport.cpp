#include "programs/ventolith/HeadlessReport.h"

#include "core/UUID.h"

#include <boost/asio/post.hpp>
#include <fmt/format.h>
#include <fmt/ranges.h>

#include <array>
#include <utility>
#include <vector>

namespace ventolith::programs {

using app::AppModel;
using app::AppModelField;
using helper::DaemonStatus;

namespace {

constexpr std::array allFields = {
    AppModelField::helperManager, AppModelField::isHelperActive, AppModelField::powerSource,
    AppModelField::activePlan,    AppModelField::activePresetID, AppModelField::presets,
    AppModelField::autoSwitch,    AppModelField::controlState,   AppModelField::connectionError,
    AppModelField::fanSliderRPM,  AppModelField::draggingFans,   AppModelField::isDashboardVisible,
    AppModelField::updateMessage, AppModelField::updateOutcome,  AppModelField::snapshot,
};

constexpr const char* none = "none";

std::string nameOf(AppModelField field) {
  switch (field) {
  case AppModelField::snapshot: return "snapshot";
  case AppModelField::connectionError: return "connectionError";
  case AppModelField::activePlan: return "activePlan";
  case AppModelField::presets: return "presets";
  case AppModelField::activePresetID: return "activePreset";
  case AppModelField::autoSwitch: return "autoSwitch";
  case AppModelField::powerSource: return "powerSource";
  case AppModelField::fanSliderRPM: return "fanSliderRPM";
  case AppModelField::draggingFans: return "draggingFans";
  case AppModelField::isDashboardVisible: return "isDashboardVisible";
  case AppModelField::controlState: return "controlState";
  case AppModelField::isHelperActive: return "isHelperActive";
  case AppModelField::updateMessage: return "updateMessage";
  case AppModelField::updateOutcome: return "updateOutcome";
  case AppModelField::helperManager: return "helper";
  }
  return {};
}

std::string_view wordOf(DaemonStatus status) {
  switch (status) {
  case DaemonStatus::notRegistered: return "not registered";
  case DaemonStatus::enabled: return "enabled";
  case DaemonStatus::requiresApproval: return "requires approval";
  case DaemonStatus::notFound: return "not found";
  }
  return {};
}

std::string helperText(const AppModel& model) {
  const auto& manager = model.helperManager();
  if (!manager) return "status not known yet";
  std::string text(wordOf(manager->status()));
  if (manager->isHelperStale()) text += ", stale";
  if (manager->isAttemptingStaleRecovery()) text += ", restarting";
  return text;
}

std::string snapshotText(const core::SensorSnapshot& snapshot) {
  std::string text = fmt::format("{} fans, {} sensors", snapshot.fans.size(), snapshot.temps.size());
  for (const core::Fan& fan : snapshot.fans)
    text += fmt::format("; {} {} rpm", fan.name, fan.currentRPM);
  if (const auto* const hottest = snapshot.hottest())
    text += fmt::format("; hottest {} {:.1f} °C", hottest->name, hottest->celsius);
  return text;
}

std::string activePresetText(const AppModel& model) {
  if (!model.activePresetID()) return none;
  const auto preset = model.activePreset();
  return preset ? preset->name : core::uuidText(*model.activePresetID());
}

std::string presetsText(const std::vector<core::FanPreset>& presets) {
  std::vector<std::string> names;
  for (const core::FanPreset& preset : presets)
    names.push_back(preset.name);
  return names.empty() ? none : fmt::format("{}", fmt::join(names, ", "));
}

std::string sliderText(const std::map<core::FanID, double>& sliders) {
  std::vector<std::string> texts;
  for (const auto& [fan, rpm] : sliders)
    texts.push_back(fmt::format("fan {} at {:.0f}", fan, rpm));
  return texts.empty() ? none : fmt::format("{}", fmt::join(texts, ", "));
}

std::string updateText(const std::optional<app::UpdateCheckOutcome>& outcome) {
  return outcome ? std::string(outcome->shortLabel()) : none;
}

std::string valueText(const AppModel& model, AppModelField field) {
  switch (field) {
  case AppModelField::snapshot: return snapshotText(model.snapshot());
  case AppModelField::connectionError: return model.connectionError().value_or(none);
  case AppModelField::activePlan: return core::encode(model.activePlan());
  case AppModelField::presets: return presetsText(model.presets());
  case AppModelField::activePresetID: return activePresetText(model);
  case AppModelField::autoSwitch: return core::toJSON(model.autoSwitch()).dump();
  case AppModelField::powerSource: return std::string(app::rawValue(model.powerSource()));
  case AppModelField::fanSliderRPM: return sliderText(model.fanSliderRPM());
  case AppModelField::draggingFans:
    return model.draggingFans().empty() ? none : fmt::format("{}", fmt::join(model.draggingFans(), ", "));
  case AppModelField::isDashboardVisible: return model.isDashboardVisible() ? "yes" : "no";
  case AppModelField::controlState: return core::encode(model.controlState());
  case AppModelField::isHelperActive: return model.isHelperActive() ? "yes" : "no";
  case AppModelField::updateMessage: return model.updateMessage();
  case AppModelField::updateOutcome: return updateText(model.updateOutcome());
  case AppModelField::helperManager: return helperText(model);
  }
  return {};
}

} // namespace

std::string reportLine(const AppModel& model, AppModelField field) {
  return nameOf(field) + ": " + valueText(model, field);
}

struct HeadlessReport::State : std::enable_shared_from_this<State> {
  State(runtime::Executor executor, AppModel& published, Write writer)
      : mainExecutor(std::move(executor)), model(published), write(std::move(writer)) {}

  runtime::Executor mainExecutor;
  AppModel& model;
  Write write;
  AppModel::Fields changed = {};
  runtime::Observation ofModel = {};
  runtime::Observation ofManager = {};

  void note(AppModel::Fields fields) {
    const bool isDue = changed.isEmpty();
    changed |= fields;
    if (!isDue) return;
    boost::asio::post(mainExecutor, [weak = weak_from_this()] {
      if (const auto self = weak.lock()) self->writeChanges();
    });
  }

  void writeChanges() {
    const auto due = std::exchange(changed, {});
    if (due.contains(AppModelField::helperManager)) observeManager();
    for (const AppModelField field : allFields) {
      if (due.contains(field)) write(reportLine(model, field));
    }
  }

  void observeManager() {
    if (!model.helperManager()) return;
    ofManager = model.helperManager()->observe([this](auto) { note({AppModelField::helperManager}); });
  }
};

HeadlessReport::HeadlessReport(runtime::Executor mainExecutor, AppModel& model, Write write)
    : state_(std::make_shared<State>(std::move(mainExecutor), model, std::move(write))) {
  state_->ofModel = model.observe([state = state_.get()](AppModel::Fields fields) { state->note(fields); });
  AppModel::Fields all;
  for (const AppModelField field : allFields)
    all |= {field};
  state_->note(all);
}

} // namespace ventolith::programs
