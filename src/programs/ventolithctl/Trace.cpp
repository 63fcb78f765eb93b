#include "programs/ventolithctl/Trace.h"

#include "core/NumberText.h"
#include "programs/ventolithctl/Context.h"

#include <fmt/format.h>

#include <cmath>

namespace ventolith::ctl {

using core::DecodeError;
using core::JSONReader;

namespace {

template <class Value>
Value known(const JSONReader& json, std::optional<Value> value) {
  if (!value)
    json.fail(DecodeError::Kind::dataCorrupted, fmt::format("\"{}\" is not known", json.asString()));
  return *value;
}

core::Fan readFan(const JSONReader& json) {
  const auto mode = json.find("mode");
  return {.id = json.at("id").asInteger(),
          .name = json.at("name").asString(),
          .currentRPM = json.at("currentRPM").asInteger(),
          .minRPM = json.at("minRPM").asInteger(),
          .maxRPM = json.at("maxRPM").asInteger(),
          .mode = mode ? std::optional(mode->asInteger()) : std::nullopt};
}

core::TempSensor readTempSensor(const JSONReader& json) {
  const JSONReader category = json.at("category");
  const JSONReader source = json.at("source");
  return {.key = json.at("key").asString(),
          .name = json.at("name").asString(),
          .celsius = json.at("celsius").asDouble(),
          .category = known(category, core::sensorCategory(category.asString())),
          .source = known(source, core::sensorSource(source.asString()))};
}

core::JSON fanJSON(const core::Fan& fan) {
  core::JSON json = core::JSON::object();
  json["id"] = fan.id;
  json["name"] = fan.name;
  json["currentRPM"] = fan.currentRPM;
  json["minRPM"] = fan.minRPM;
  json["maxRPM"] = fan.maxRPM;
  if (fan.mode) json["mode"] = *fan.mode;
  return json;
}

core::JSON tempJSON(const core::TempSensor& sensor) {
  core::JSON json = core::JSON::object();
  json["key"] = sensor.key;
  json["name"] = sensor.name;
  json["celsius"] = sensor.celsius;
  json["category"] = rawValue(sensor.category);
  json["source"] = rawValue(sensor.source);
  return json;
}

} // namespace

void decodeTraceLine(std::string_view line, TraceTick& tick) {
  const core::JSON document = core::parseJSON(line, {.bytes = maxTraceLineBytes});
  const JSONReader json(document);
  const auto plan = json.find("plan");
  const auto reset = json.find("reset");
  tick.seconds = json.at("t").asDouble();
  tick.snapshot.fans = readList(json.at("fans"), readFan);
  tick.snapshot.temps = readList(json.at("temps"), readTempSensor);
  tick.plan = plan ? std::optional(readFanControlPlan(*plan)) : std::nullopt;
  tick.reset = reset && reset->asBoolean();
}

TraceReader::TraceReader(std::istream& in, std::string name)
    : in_(in), name_(std::move(name)), buffer_(maxTraceLineBytes + 1) {}

const TraceTick* TraceReader::next() {
  const auto line = nextLine();
  if (!line) return nullptr;
  try {
    // The parser reads the usual line fast; whatever it does not read is judged by the decoder.
    if (!parser_.parse(*line, tick_)) decodeTraceLine(*line, tick_);
  } catch (const DecodeError& error) {
    fail(error.what());
  }
  checkTime();
  previousSeconds_ = tick_.seconds;
  return &tick_;
}

std::optional<std::string_view> TraceReader::nextLine() {
  in_.getline(buffer_.data(), static_cast<std::streamsize>(buffer_.size()));
  const auto taken = static_cast<std::size_t>(in_.gcount());
  if (in_.bad()) throw InputError(name_ + ": cannot be read");
  if (in_.eof() && taken == 0) return std::nullopt;
  ++line_;
  if (in_.fail()) fail(fmt::format("longer than {} bytes", maxTraceLineBytes));
  return std::string_view(buffer_.data(), in_.eof() ? taken : taken - 1); // The end of line is counted too.
}

void TraceReader::checkTime() const {
  const double seconds = tick_.seconds;
  if (!(std::abs(seconds) <= maxTraceSeconds)) {
    fail(fmt::format("t: {} lies beyond {} seconds", seconds, maxTraceSeconds));
  }
  if (previousSeconds_ && seconds < *previousSeconds_) {
    fail(fmt::format("t: goes back from {} to {}", core::fractionText(*previousSeconds_),
                     core::fractionText(seconds)));
  }
}

void TraceReader::fail(std::string_view what) const {
  throw InputError(fmt::format("{}:{}: {}", name_, line_, what));
}

std::set<std::string> sensorIDs(TraceReader& trace) {
  std::set<std::string> ids;
  while (const TraceTick* tick = trace.next()) {
    for (const core::TempSensor& sensor : tick->snapshot.temps)
      ids.insert(sensor.id());
  }
  return ids;
}

core::JSON fansJSON(const core::SensorSnapshot& snapshot) {
  core::JSON list = core::JSON::array();
  for (const core::Fan& fan : snapshot.fans)
    list.push_back(fanJSON(fan));
  return list;
}

core::JSON tempsJSON(const core::SensorSnapshot& snapshot) {
  core::JSON list = core::JSON::array();
  for (const core::TempSensor& sensor : snapshot.temps)
    list.push_back(tempJSON(sensor));
  return list;
}

std::string traceLine(double seconds, const core::SensorSnapshot& snapshot) {
  return fmt::format("{{\"t\":{},\"fans\":{},\"temps\":{}}}\n", core::fractionText(seconds),
                     core::writeJSON(fansJSON(snapshot)), core::writeJSON(tempsJSON(snapshot)));
}

} // namespace ventolith::ctl
