// The machine apart from its driver: time, temperatures, faults and the script.
#include "platform/simulated/SimulatedMac.h"

#include "core/JSON.h"
#include "hardware/FanKeys.h"

#include <fmt/format.h>

#include <algorithm>
#include <limits>
#include <stdexcept>
#include <utility>

namespace ventolith::simulated {

namespace {

constexpr runtime::Duration stepSpan = std::chrono::milliseconds(50);
// What lies further back than ten minutes has no say in how the machine is now, so a long gap costs no
// more than this.
constexpr std::int64_t mostSteps = 12000;

constexpr double sensorNoise = 0.05; // Degrees Celsius, either way.
// A pinned sensor still has to differ from sample to sample, or it would count as broken; but by too
// little to be seen, and never downwards, so that a pin at a threshold is at the threshold.
constexpr double pinnedNoise = 0.001;

double shareOfFullSpeed(const std::vector<FanDescription>& fans) {
  if (fans.empty()) return 0;
  double sum = 0;
  for (const FanDescription& fan : fans)
    sum += fan.idle / fan.maximum;
  return sum / static_cast<double>(fans.size());
}

[[noreturn]] void failLine(std::size_t number, const std::exception& error) {
  throw std::runtime_error(fmt::format("line {}: {}", number, error.what()));
}

} // namespace

SimulatedMac::SimulatedMac(MachineDescription machine, runtime::Clock& clock, std::uint64_t seed)
    : machine_(std::move(machine)),
      clock_(clock),
      start_(clock.now()),
      now_(start_),
      modelTime_(start_),
      keys_(machine_.keys, machine_.fans),
      thermal_(machine_.ambientCelsius, machine_.zones, shareOfFullSpeed(machine_.fans)),
      restTemperatures_(thermal_.temperatures()),
      noise_(seed) {
  for (const FanDescription& fan : machine_.fans)
    fans_.emplace_back(fan);
}

const std::vector<SimulatedFan>& SimulatedMac::fans() {
  advance();
  return fans_;
}

// Time

void SimulatedMac::advance() {
  const runtime::Instant target = std::max(now_, clock_.now());
  while (!script_.empty() && script_.begin()->first <= target) {
    const auto next = script_.extract(script_.begin());
    advanceModel(next.key());
    apply(next.mapped());
  }
  advanceModel(target);
}

void SimulatedMac::advanceModel(runtime::Instant now) {
  now_ = std::max(now_, now);
  const std::int64_t steps = (now_ - modelTime_) / stepSpan;
  for (std::int64_t count = std::min(steps, mostSteps); count > 0; --count)
    step();
  modelTime_ += steps * stepSpan;
}

void SimulatedMac::step() {
  const double seconds = runtime::toSeconds(stepSpan);
  const double celsius = firmwareCelsius();
  for (SimulatedFan& fan : fans_)
    fan.step(seconds, celsius, machine_.firmware);
  thermal_.step(seconds, load_, airflow());
}

double SimulatedMac::firmwareCelsius() const {
  double hottest = -std::numeric_limits<double>::infinity();
  for (const std::size_t zone : machine_.firmware.zones)
    hottest = std::max(hottest, thermal_.temperatures()[zone]);
  for (const auto& [name, celsius] : pinned_)
    hottest = std::max(hottest, celsius);
  return hottest;
}

double SimulatedMac::airflow() const {
  if (fans_.empty()) return 0;
  double sum = 0;
  for (const SimulatedFan& fan : fans_)
    sum += fan.speed() / fan.description().maximum;
  return sum / static_cast<double>(fans_.size());
}

// Temperatures

double SimulatedMac::temperature(const std::string& name, const SensorDescription& sensor, double noise) {
  const bool isFrozen = sensors_ == SensorState::frozen;
  const auto pin = pinned_.find(name);
  if (pin != pinned_.end())
    return isFrozen || noise == 0 ? pin->second : pin->second + pinnedNoise * noise_.next();
  const std::vector<double>& zones = isFrozen ? frozenTemperatures_ : thermal_.temperatures();
  const double celsius = sensor.celsius + zones[sensor.zone] - restTemperatures_[sensor.zone];
  return isFrozen || noise == 0 ? celsius : celsius + noise * (2 * noise_.next() - 1);
}

std::vector<std::string> SimulatedMac::hubLabels() {
  advance();
  std::vector<std::string> labels;
  if (!machine_.hub || sensors_ == SensorState::gone) return labels;
  for (const HubSensorDescription& sensor : *machine_.hub)
    labels.push_back(sensor.label);
  return labels;
}

std::optional<double> SimulatedMac::sampleHub(std::size_t index) {
  advance();
  if (!machine_.hub || index >= machine_.hub->size()) return std::nullopt;
  // A service without a single sample makes a reading of 0 degrees, which is plausible, and which would
  // keep a battery alive whose sensor is gone.
  if (sensors_ == SensorState::gone) return std::numeric_limits<double>::quiet_NaN();
  const HubSensorDescription& service = (*machine_.hub)[index];
  return temperature(service.label, service.sensor, sensorNoise);
}

// Faults

TableKey& SimulatedMac::requireKey(const std::string& key) {
  TableKey* const found = keys_.everKnown(key);
  if (found == nullptr) throw std::invalid_argument(fmt::format("this machine has no key \"{}\"", key));
  return *found;
}

void SimulatedMac::applyNow(const ScriptChange& change) {
  validate(change);
  advance();
  apply(change);
}

void SimulatedMac::setLoad(double load) {
  applyNow({.load = std::clamp(load, 0.0, 1.0)});
}

void SimulatedMac::pinTemperature(const std::string& keyOrLabel, std::optional<double> celsius) {
  applyNow({.temperatures = {{keyOrLabel, celsius}}});
}

void SimulatedMac::refuseWrites(const std::string& key, std::optional<std::uint8_t> result) {
  applyNow({.refusals = {{key, result}}});
}

void SimulatedMac::failDriver(const std::string& key, DriverFailure failure) {
  applyNow({.driverFailures = {{key, failure}}});
}

void SimulatedMac::reclaim(core::FanID fan, runtime::Duration insisting) {
  applyNow({.reclaims = {{fan, insisting}}});
}

void SimulatedMac::setSensors(SensorState state) {
  applyNow({.sensors = state});
}

void SimulatedMac::removeKey(const std::string& key) {
  applyNow({.removedKeys = {key}});
}

void SimulatedMac::restoreKey(const std::string& key) {
  applyNow({.restoredKeys = {key}});
}

void SimulatedMac::setKeyType(const std::string& key, std::optional<std::string> type) {
  applyNow({.keyTypes = {{key, std::move(type)}}});
}

// Script

void SimulatedMac::runScript(std::string_view text) {
  advance();
  std::vector<ScriptLine> lines = parseScript(text);
  for (const ScriptLine& line : lines) {
    try {
      validate(line.change);
    } catch (const std::invalid_argument& error) {
      failLine(line.number, error);
    }
  }
  for (ScriptLine& line : lines)
    schedule(std::move(line));
  advance();
}

void SimulatedMac::runLine(std::string_view text) {
  advance();
  ScriptLine line = parseScriptLine(text);
  try {
    validate(line.change);
  } catch (const std::invalid_argument& error) {
    throw std::runtime_error(error.what());
  }
  schedule(std::move(line));
  advance();
}

void SimulatedMac::schedule(ScriptLine line) {
  const runtime::Instant at = line.at ? start_ + *line.at : now_;
  script_.emplace(at, std::move(line.change));
}

void SimulatedMac::validate(const ScriptChange& change) const {
  const auto requireKnown = [this](const std::string& key) {
    if (keys_.everKnown(key) == nullptr) {
      throw std::invalid_argument(fmt::format("this machine has no key \"{}\"", key));
    }
  };
  for (const auto& [name, celsius] : change.temperatures) {
    const TableKey* const key = keys_.everKnown(name);
    const bool isKey = key != nullptr && key->meaning.kind == KeyMeaning::Kind::temperature;
    const auto isNamed = [&wanted = name](const HubSensorDescription& sensor) {
      return sensor.label == wanted;
    };
    const bool isLabel = machine_.hub && std::any_of(machine_.hub->begin(), machine_.hub->end(), isNamed);
    if (!isKey && !isLabel)
      throw std::invalid_argument(fmt::format("this machine has no sensor \"{}\"", name));
  }
  for (const auto& [key, result] : change.refusals)
    requireKnown(key);
  for (const auto& [key, failure] : change.driverFailures)
    requireKnown(key);
  for (const auto& [key, type] : change.keyTypes) {
    requireKnown(key);
    if (type && type->size() != 4) throw std::invalid_argument("a type has four characters");
  }
  for (const std::string& key : change.removedKeys)
    requireKnown(key);
  for (const std::string& key : change.restoredKeys)
    requireKnown(key);
  for (const auto& [fan, span] : change.reclaims) {
    if (fan >= 0 && static_cast<std::size_t>(fan) < fans_.size()) continue;
    throw std::invalid_argument(fmt::format("this machine has no fan {}", fan));
  }
}

void SimulatedMac::apply(const ScriptChange& change) {
  if (change.load) load_ = *change.load;
  for (const auto& [name, celsius] : change.temperatures) {
    pinned_.erase(name);
    if (celsius) pinned_[name] = *celsius;
  }
  for (const auto& [key, result] : change.refusals) {
    refusals_.erase(key);
    if (result) refusals_[key] = *result;
  }
  for (const auto& [key, failure] : change.driverFailures)
    driverFailures_[key] = failure;
  for (const auto& [fan, span] : change.reclaims)
    fans_[static_cast<std::size_t>(fan)].reclaim(now_ + span);
  if (change.sensors == SensorState::frozen && sensors_ != SensorState::frozen) {
    frozenTemperatures_ = thermal_.temperatures();
  }
  if (change.sensors) sensors_ = *change.sensors;
  for (const std::string& key : change.removedKeys)
    requireKey(key).isRemoved = true;
  for (const std::string& key : change.restoredKeys)
    requireKey(key).isRemoved = false;
  for (const auto& [key, type] : change.keyTypes)
    requireKey(key).claimedType = type;
}

} // namespace ventolith::simulated
