#include "Scene.h"

#include "app/PresetLibrary.h"

#include <algorithm>

namespace ventolith::ui::pictures {

namespace {

using app::FanPreset;
using app::FanRule;
using core::Fan;
using core::FanControlModePlan;
using core::FanControlPlan;
using core::SensorCategory;
using core::SensorSnapshot;
using core::TempSensor;

namespace Library = app::PresetLibrary;

std::vector<TempSensor> sensors() {
  return {{.key = "Tp01", .name = "CPU", .celsius = 77.3, .category = SensorCategory::cpu},
          {.key = "Tp05", .name = "CPU (cluster)", .celsius = 81.6, .category = SensorCategory::cpu},
          {.key = "Tp09", .name = "CPU (cluster)", .celsius = 73.8, .category = SensorCategory::cpu},
          {.key = "Tg05", .name = "GPU", .celsius = 64.9, .category = SensorCategory::gpu},
          {.key = "Tg0D", .name = "GPU", .celsius = 58.2, .category = SensorCategory::gpu},
          {.key = "TH0x", .name = "SSD/Board", .celsius = 47.6, .category = SensorCategory::ssd},
          {.key = "TB1T", .name = "Battery", .celsius = 34.8, .category = SensorCategory::battery},
          {.key = "TB2T", .name = "Battery", .celsius = 33.5, .category = SensorCategory::battery}};
}

SensorSnapshot reading(std::int64_t left, std::int64_t right) {
  return {.fans = {{.id = 0, .name = "Fan 0", .currentRPM = left, .minRPM = 1250, .maxRPM = 6336},
                   {.id = 1, .name = "Fan 1", .currentRPM = right, .minRPM = 1350, .maxRPM = 6864}},
          .temps = sensors()};
}

SensorSnapshot fullReading() {
  SensorSnapshot full;
  for (int index = 0; index < 6; ++index)
    full.fans.push_back({.id = index,
                         .name = "Fan " + std::to_string(index),
                         .currentRPM = 1300 + 900 * index,
                         .minRPM = 1200,
                         .maxRPM = 6000});
  const std::array kinds{SensorCategory::cpu, SensorCategory::gpu, SensorCategory::ssd,
                         SensorCategory::battery, SensorCategory::sensor};
  for (int index = 0; index < 64; ++index)
    full.temps.push_back({.key = "T" + std::to_string(index),
                          .name = "Sensor " + std::to_string(index),
                          .celsius = 101.5 - 1.1 * index,
                          .category = kinds.at(static_cast<std::size_t>(index) / 13)});
  return full;
}

SensorSnapshot readingWithLongNames() {
  SensorSnapshot reading = pictures::reading(12310, 15921);
  reading.fans[0].name = "The fan at the far left, behind the second power supply";
  reading.fans[1].name = "Fan 1, which somebody has given an unreasonably long name";
  for (Fan& fan : reading.fans)
    fan.maxRPM = 24000;
  for (TempSensor& sensor : reading.temps)
    sensor.name = "Thermal diode of the " + sensor.name + " beside the connector of the display";
  reading.temps[0].celsius = 108.25;
  return reading;
}

FanRule whenAbove(double celsius, double releaseBelow, double percent, double dwell) {
  return {.thresholdCelsius = celsius,
          .releaseBelowCelsius = releaseBelow,
          .targetPercent = percent,
          .dwellSeconds = dwell};
}

std::vector<FanRule> rules() {
  std::vector<FanRule> rules{whenAbove(85, 80, 80, 3), whenAbove(62, 56, 60, 5), whenAbove(42, 39, 45, 10)};
  rules[1].sensorID = sensors()[5].id();
  rules[1].fanTarget = core::RuleFanTarget::fan(1);
  rules[2].sensorID = sensors()[6].id();
  rules[2].enabled = false;
  return rules;
}

/// With a preset's colour given by the sum of its identifier's bytes, pictures are the same each time.
core::UUID idOfSum(int sum) {
  core::UUID id{};
  for (auto& byte : id) {
    byte = static_cast<std::uint8_t>(std::min(sum, 255));
    sum -= byte;
  }
  return id;
}

FanPreset studioSession() {
  return {
      .id = idOfSum(282),
      .name = "Studio Session",
      .plan = {.fans = {{0, FanControlModePlan::fixedRPM(2200)}, {1, FanControlModePlan::fixedRPM(2400)}}}};
}

/// Of fan 1; fan 0 is the firmware's.
FanControlPlan balancedFanOne() {
  FanControlPlan plan = Library::balanced({1}).plan;
  plan.rules = rules();
  return plan;
}

/// On AC, that is what the application starts with.
void storePresets(const app::ConfigStore& store, const std::vector<FanPreset>& presets,
                  const std::optional<core::UUID>& onAC) {
  store.savePresets(presets);
  store.saveAutoSwitch({.enabled = true, .onBatteryPresetID = Library::quietID, .onACPresetID = onAC});
}

std::vector<FanPreset> commonPresets() {
  std::vector<FanPreset> presets = Library::builtIns({0, 1});
  presets.push_back(studioSession());
  return presets;
}

FanControlPlan planInAllModes() {
  FanControlPlan plan;
  plan.fans = {{1, FanControlModePlan::fixedRPM(2500)},
               {2, FanControlModePlan::fixedPercent(100)},
               {3, Library::quiet({3}).plan.fans.front().mode},
               {4, Library::maxx({4}).plan.fans.front().mode}};
  for (int index = 0; index < 12; ++index) {
    const int celsius = 50 + 5 * index;
    plan.rules.push_back(whenAbove(celsius, celsius - 5, 5 + 9 * index, index));
    if (index % 3 == 1)
      plan.rules.back().sensorID = fullReading().temps[static_cast<std::size_t>(index)].id();
    if (index % 3 == 2) plan.rules.back().fanTarget = core::RuleFanTarget::fan(index); // Some are not there.
    plan.rules.back().enabled = index % 4 != 3;
  }
  return plan;
}

std::vector<FanPreset> manyPresets() {
  std::vector<FanPreset> presets = commonPresets();
  for (int index = 0; index < 12; ++index)
    presets.push_back({.id = idOfSum(300 + 30 * index),
                       .name = "Preset " + std::to_string(index),
                       .plan = Library::quiet({0}).plan});
  return presets;
}

std::vector<FanPreset> presetsWithLongNames() {
  std::vector<FanPreset> presets = commonPresets();
  presets.push_back({.id = idOfSum(25),
                     .name = "A preset for long nights of rendering in the warm room under the roof",
                     .plan = Library::balanced({0, 1}).plan});
  presets.back().plan.rules = rules();
  return presets;
}

} // namespace

QString nameOf(Situation situation) {
  switch (situation) {
  case Situation::normal: return QStringLiteral("normal");
  case Situation::empty: return QStringLiteral("empty");
  case Situation::inactive: return QStringLiteral("inactive");
  case Situation::stale: return QStringLiteral("stale");
  case Situation::error: return QStringLiteral("error");
  case Situation::many: return QStringLiteral("many");
  case Situation::longNames: return QStringLiteral("long-names");
  }
  return {};
}

Scene::Scene(Situation situation, Appearance appearance) {
  theme.force({.appearance = appearance, .reduceMotion = true});
  registration->status = app::DaemonStatus::enabled;
  socket->source = app::PowerSource::ac;
  supportURL = "https://example.com/support";
  set(situation);
  begin();
  if (situation == Situation::many) controller().states.yield({.stoppedFans = std::vector<core::FanID>{3}});
  turn();
}

void Scene::set(Situation situation) {
  const auto activate = [this](const core::UUID& preset, const FanControlPlan& plan) {
    store.savePlan(plan);
    store.saveActivePresetID(preset);
  };
  storePresets(store, commonPresets(), std::nullopt);
  switch (situation) {
  case Situation::normal:
    readings.next = reading(2310, 5921);
    storePresets(store, commonPresets(), Library::balancedID);
    activate(Library::balancedID, balancedFanOne());
    break;
  case Situation::empty:
    readings.next = {};
    store.savePresets({});
    store.saveAutoSwitch(core::AutoSwitchSettings::off);
    break;
  case Situation::inactive:
    readings.next = reading(2310, 2452);
    registration->status = app::DaemonStatus::notRegistered;
    store.savePlan({.rules = rules()});
    break;
  case Situation::stale:
    readings.next = reading(3187, 6851);
    helper::HelperManager::reportHelperStale(true);
    store.savePlan(
        {.fans = {{0, FanControlModePlan::fixedRPM(3200)}, {1, FanControlModePlan::fixedPercent(100)}},
         .rules = rules()});
    break;
  case Situation::error: driver.openError = hardware::SMCError::driverNotFound(); break;
  case Situation::many:
    readings.next = fullReading();
    storePresets(store, manyPresets(), std::nullopt);
    store.savePlan(planInAllModes());
    break;
  case Situation::longNames:
    readings.next = readingWithLongNames();
    storePresets(store, presetsWithLongNames(), std::nullopt);
    store.saveAutoSwitch({.enabled = true, .onACPresetID = store.loadPresets()->back().id});
    break;
  }
}

} // namespace ventolith::ui::pictures
