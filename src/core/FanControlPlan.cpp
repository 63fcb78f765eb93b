#include "core/FanControlPlan.h"

#include "core/Excerpt.h"
#include "core/Visitor.h"

namespace ventolith::core {

const FanControlPlan FanControlPlan::allAutomatic{};
const AutoSwitchSettings AutoSwitchSettings::off{};

namespace {

// The form of an enumeration's case: {"name":{}}, or {"name":{"_0":payload}}.
JSON caseJSON(const char* name) {
  return {{name, JSON::object()}};
}
JSON caseJSON(const char* name, JSON payload) {
  JSON members = JSON::object();
  members["_0"] = std::move(payload);
  return {{name, std::move(members)}};
}

template <class Records, class Write>
JSON listJSON(const Records& records, Write write) {
  JSON list = JSON::array();
  for (const auto& record : records)
    list.push_back(write(record));
  return list;
}

template <class Value>
void addIfPresent(JSON& object, const char* key, const std::optional<Value>& value) {
  if (value) object[key] = *value;
}

std::optional<std::string> optionalText(const std::optional<UUID>& id) {
  return id ? std::optional(uuidText(*id)) : std::nullopt;
}

std::optional<std::string> readOptionalString(const JSONReader& json, std::string_view key) {
  const auto member = json.find(key);
  return member ? std::optional(member->asString()) : std::nullopt;
}

std::optional<UUID> readOptionalUUID(const JSONReader& json, std::string_view key) {
  const auto member = json.find(key);
  return member ? std::optional(member->asUUID()) : std::nullopt;
}

JSON toJSON(const CurvePoint& point) {
  JSON json = JSON::object();
  json["id"] = uuidText(point.id);
  json["celsius"] = point.celsius;
  json["percent"] = point.percent;
  return json;
}

CurvePoint readCurvePoint(const JSONReader& json) {
  return {.id = json.at("id").asUUID(),
          .celsius = json.at("celsius").asDouble(),
          .percent = json.at("percent").asDouble()};
}

FanCurve readFanCurve(const JSONReader& json) {
  FanCurve curve;
  curve.sourceSensorID = readOptionalString(json, "sourceSensorID");
  curve.points = readList(json.at("points"), readCurvePoint);
  const JSONReader interpolation = json.at("interpolation");
  const auto known = curveInterpolation(interpolation.asString());
  if (!known) {
    interpolation.fail(DecodeError::Kind::dataCorrupted, "expected \"linear\" or \"monotone\", found \"" +
                                                             excerpt(interpolation.asString()) + "\"");
  }
  curve.interpolation = *known;
  return curve;
}

JSON toJSON(const FanControlModePlan& mode) {
  return std::visit(
      Visitor{
          [](const FanControlModePlan::Automatic&) { return caseJSON("automatic"); },
          [](const FanControlModePlan::FixedRPM& fixed) { return caseJSON("fixedRPM", fixed.rpm); },
          [](const FanControlModePlan::FixedPercent& fixed) {
            return caseJSON("fixedPercent", fixed.percent);
          },
          [](const FanControlModePlan::Curve& curve) { return caseJSON("curve", core::toJSON(curve.curve)); },
      },
      mode.value);
}

FanControlModePlan readFanControlModePlan(const JSONReader& json) {
  const auto name = json.onlyCase({"automatic", "fixedRPM", "fixedPercent", "curve"});
  const JSONReader members = json.at(name);
  if (name == "automatic") {
    members.expectObject();
    return FanControlModePlan::automatic();
  }
  const JSONReader payload = members.at("_0");
  if (name == "fixedRPM") return FanControlModePlan::fixedRPM(payload.asDouble());
  if (name == "fixedPercent") return FanControlModePlan::fixedPercent(payload.asDouble());
  return FanControlModePlan::curve(readFanCurve(payload));
}

JSON toJSON(const RuleFanTarget& target) {
  return std::visit(Visitor{
                        [](const RuleFanTarget::All&) { return caseJSON("all"); },
                        [](const RuleFanTarget::OneFan& one) { return caseJSON("fan", one.fan); },
                    },
                    target.value);
}

RuleFanTarget readRuleFanTarget(const JSONReader& json) {
  const auto name = json.onlyCase({"all", "fan"});
  const JSONReader members = json.at(name);
  if (name == "all") {
    members.expectObject();
    return RuleFanTarget::all();
  }
  return RuleFanTarget::fan(members.at("_0").asInteger());
}

JSON toJSON(const FanPlan& plan) {
  JSON json = JSON::object();
  json["fanID"] = plan.fanID;
  json["mode"] = toJSON(plan.mode);
  return json;
}

FanPlan readFanPlan(const JSONReader& json) {
  return {.fanID = json.at("fanID").asInteger(), .mode = readFanControlModePlan(json.at("mode"))};
}

JSON toJSON(const FanRule& rule) {
  JSON json = JSON::object();
  json["id"] = uuidText(rule.id);
  json["name"] = rule.name;
  addIfPresent(json, "sensorID", rule.sensorID);
  json["thresholdCelsius"] = rule.thresholdCelsius;
  json["releaseBelowCelsius"] = rule.releaseBelowCelsius;
  json["targetPercent"] = rule.targetPercent;
  json["fanTarget"] = toJSON(rule.fanTarget);
  json["dwellSeconds"] = rule.dwellSeconds;
  json["enabled"] = rule.enabled;
  return json;
}

FanRule readFanRule(const JSONReader& json) {
  return {.id = json.at("id").asUUID(),
          .name = json.at("name").asString(),
          .sensorID = readOptionalString(json, "sensorID"),
          .thresholdCelsius = json.at("thresholdCelsius").asDouble(),
          .releaseBelowCelsius = json.at("releaseBelowCelsius").asDouble(),
          .targetPercent = json.at("targetPercent").asDouble(),
          .fanTarget = readRuleFanTarget(json.at("fanTarget")),
          .dwellSeconds = json.at("dwellSeconds").asDouble(),
          .enabled = json.at("enabled").asBoolean()};
}

JSON toJSON(const ControlTuning& tuning) {
  JSON json = JSON::object();
  json["emaAlpha"] = tuning.emaAlpha;
  json["hysteresisCelsius"] = tuning.hysteresisCelsius;
  json["maxDeltaRPMPerTick"] = tuning.maxDeltaRPMPerTick;
  json["minDwellSeconds"] = tuning.minDwellSeconds;
  return json;
}

ControlTuning readControlTuning(const JSONReader& json) {
  return {.emaAlpha = json.at("emaAlpha").asDouble(),
          .hysteresisCelsius = json.at("hysteresisCelsius").asDouble(),
          .maxDeltaRPMPerTick = json.at("maxDeltaRPMPerTick").asDouble(),
          .minDwellSeconds = json.at("minDwellSeconds").asDouble()};
}

} // namespace

JSON toJSON(const FanCurve& curve) {
  JSON json = JSON::object();
  addIfPresent(json, "sourceSensorID", curve.sourceSensorID);
  json["points"] = listJSON(curve.points, [](const CurvePoint& point) { return toJSON(point); });
  json["interpolation"] = rawValue(curve.interpolation);
  return json;
}

JSON toJSON(const FanControlPlan& plan) {
  JSON json = JSON::object();
  json["fans"] = listJSON(plan.fans, [](const FanPlan& fan) { return toJSON(fan); });
  json["rules"] = listJSON(plan.rules, [](const FanRule& rule) { return toJSON(rule); });
  json["tuning"] = toJSON(plan.tuning);
  return json;
}

FanControlPlan readFanControlPlan(const JSONReader& json) {
  return {.fans = readList(json.at("fans"), readFanPlan),
          .rules = readList(json.at("rules"), readFanRule),
          .tuning = readControlTuning(json.at("tuning"))};
}

JSON toJSON(const FanPreset& preset) {
  JSON json = JSON::object();
  json["id"] = uuidText(preset.id);
  json["name"] = preset.name;
  json["isBuiltIn"] = preset.isBuiltIn;
  json["plan"] = toJSON(preset.plan);
  return json;
}

FanPreset readFanPreset(const JSONReader& json) {
  return {.id = json.at("id").asUUID(),
          .name = json.at("name").asString(),
          .isBuiltIn = json.at("isBuiltIn").asBoolean(),
          .plan = readFanControlPlan(json.at("plan"))};
}

JSON toJSON(const AutoSwitchSettings& settings) {
  JSON json = JSON::object();
  json["enabled"] = settings.enabled;
  addIfPresent(json, "onBatteryPresetID", optionalText(settings.onBatteryPresetID));
  addIfPresent(json, "onACPresetID", optionalText(settings.onACPresetID));
  return json;
}

AutoSwitchSettings readAutoSwitchSettings(const JSONReader& json) {
  return {.enabled = json.at("enabled").asBoolean(),
          .onBatteryPresetID = readOptionalUUID(json, "onBatteryPresetID"),
          .onACPresetID = readOptionalUUID(json, "onACPresetID")};
}

std::string encode(const FanControlPlan& plan) {
  return writeJSON(toJSON(plan));
}

FanControlPlan decodeFanControlPlan(std::string_view text) {
  const JSON document = parseJSON(text);
  return readFanControlPlan(JSONReader(document));
}

} // namespace ventolith::core
