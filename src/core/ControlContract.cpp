#include "core/ControlContract.h"

#include "core/Visitor.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <charconv>

namespace ventolith::core {

const ControlResult ControlResult::applied{Plain::applied};
const ControlResult ControlResult::acquiring{Plain::acquiring};
const ControlResult ControlResult::timedOut{Plain::timedOut};
const ControlResult ControlResult::reclaimed{Plain::reclaimed};
const ControlResult ControlResult::notPrivileged{Plain::notPrivileged};
const ControlResult ControlResult::noHelper{Plain::noHelper};

const ControlState ControlState::idle{};

namespace {

struct ModeWords {
  ControlMode mode;
  std::string_view caseName;
  std::string_view label;
  std::string_view symbolName;
};

constexpr std::array modeWords = {
    ModeWords{ControlMode::automatic, "automatic", "Auto", "arrow.uturn.backward"},
    ModeWords{ControlMode::fullBlast, "fullBlast", "Full Blast", "bolt.fill"},
    ModeWords{ControlMode::manual, "manual", "Manual", "hand.point.up.left.fill"},
    ModeWords{ControlMode::curve, "curve", "Curve", "chart.line.uptrend.xyaxis"},
};

const ModeWords& words(ControlMode mode) {
  return modeWords.at(static_cast<std::size_t>(mode));
}

/// Of the mode whose case name is `name`, which is one of them.
const ModeWords& words(std::string_view name) {
  const auto isNamed = [name](const ModeWords& mode) { return mode.caseName == name; };
  return *std::find_if(modeWords.begin(), modeWords.end(), isNamed);
}

struct PlainWords {
  ControlResult::Plain result;
  std::int64_t xpcCode;
  std::string_view caseName;
};

constexpr std::array plainWords = {
    PlainWords{ControlResult::Plain::applied, 0, "applied"},
    PlainWords{ControlResult::Plain::acquiring, 1, "acquiring"},
    PlainWords{ControlResult::Plain::timedOut, 2, "timedOut"},
    PlainWords{ControlResult::Plain::reclaimed, 3, "reclaimed"},
    PlainWords{ControlResult::Plain::notPrivileged, 5, "notPrivileged"},
    PlainWords{ControlResult::Plain::noHelper, 6, "noHelper"},
};
constexpr std::int64_t rejectedCode = 4;
constexpr std::int64_t failedCode = 7;

const PlainWords& words(ControlResult::Plain result) {
  return plainWords.at(static_cast<std::size_t>(result));
}

template <class Value, class Write>
JSON fanMapJSON(const std::map<FanID, Value>& map, Write write) {
  JSON object = JSON::object();
  for (const auto& [fan, value] : map)
    object[std::to_string(fan)] = write(value);
  return object;
}

FanID readFanKey(const JSONReader& member, std::string_view key) {
  FanID fan = 0;
  const auto [end, error] = std::from_chars(key.data(), key.data() + key.size(), fan);
  if (error != std::errc() || end != key.data() + key.size()) {
    member.fail(DecodeError::Kind::typeMismatch, "expected a fan id as the key");
  }
  return fan;
}

template <class Read>
auto readFanMap(const JSONReader& json, Read read) {
  json.expectObject();
  std::map<FanID, decltype(read(json))> map;
  for (const auto& item : json.value().items()) {
    const JSONReader member = json.at(item.key());
    const FanID fan = readFanKey(member, item.key());
    if (!map.emplace(fan, read(member)).second) {
      member.fail(DecodeError::Kind::dataCorrupted, fmt::format("fan {} stands twice", fan));
    }
  }
  return map;
}

} // namespace

std::string_view label(ControlMode mode) {
  return words(mode).label;
}
std::string_view symbolName(ControlMode mode) {
  return words(mode).symbolName;
}
std::string_view caseName(ControlMode mode) {
  return words(mode).caseName;
}

ControlMode controlMode(const FanControlModePlan& mode) {
  return std::visit(Visitor{
                        [](const FanControlModePlan::Automatic&) { return ControlMode::automatic; },
                        [](const FanControlModePlan::FixedRPM&) { return ControlMode::manual; },
                        [](const FanControlModePlan::FixedPercent& fixed) {
                          return fixed.percent >= 100 ? ControlMode::fullBlast : ControlMode::manual;
                        },
                        [](const FanControlModePlan::Curve&) { return ControlMode::curve; },
                    },
                    mode.value);
}

std::int64_t ControlResult::xpcCode() const {
  return std::visit(Visitor{
                        [](const Rejected&) { return rejectedCode; },
                        [](const Failed&) { return failedCode; },
                        [](Plain plain) { return words(plain).xpcCode; },
                    },
                    value);
}

ControlResult ControlResult::fromXPCCode(std::int64_t code) {
  if (code == rejectedCode) return rejected(0);
  for (const PlainWords& plain : plainWords) {
    if (plain.xpcCode == code) return {plain.result};
  }
  return failed(fmt::format("xpc: unrecognized result code {}", code));
}

std::string ControlResult::text() const {
  return std::visit(Visitor{
                        [](const Rejected& result) { return fmt::format("rejected(code: {})", result.code); },
                        [](const Failed& result) { return fmt::format("failed(\"{}\")", result.message); },
                        [](Plain plain) { return std::string(words(plain).caseName); },
                    },
                    value);
}

JSON toJSON(ControlMode mode) {
  return {{std::string(caseName(mode)), JSON::object()}};
}

JSON toJSON(const ControlState& state) {
  JSON json = JSON::object();
  json["perFanMode"] = fanMapJSON(state.perFanMode, [](ControlMode mode) { return toJSON(mode); });
  json["targets"] = fanMapJSON(state.targets, [](std::int64_t rpm) { return JSON(rpm); });
  json["isHolding"] = state.isHolding;
  if (state.lastError) json["lastError"] = *state.lastError;
  if (state.stoppedFans) json["stoppedFans"] = *state.stoppedFans;
  return json;
}

ControlMode readControlMode(const JSONReader& json) {
  const auto name = json.onlyCase({"automatic", "fullBlast", "manual", "curve"});
  json.at(name).expectObject();
  return words(name).mode;
}

ControlState readControlState(const JSONReader& json) {
  ControlState state;
  state.perFanMode = readFanMap(json.at("perFanMode"), readControlMode);
  state.targets = readFanMap(json.at("targets"), [](const JSONReader& rpm) { return rpm.asInteger(); });
  state.isHolding = json.at("isHolding").asBoolean();
  if (const auto error = json.find("lastError")) state.lastError = error->asString();
  if (const auto stopped = json.find("stoppedFans")) {
    state.stoppedFans = readList(*stopped, [](const JSONReader& fan) { return fan.asInteger(); });
  }
  return state;
}

std::string encode(const ControlState& state) {
  return writeJSON(toJSON(state));
}

ControlState decodeControlState(std::string_view text) {
  const JSON document = parseJSON(text);
  return readControlState(JSONReader(document));
}

} // namespace ventolith::core
