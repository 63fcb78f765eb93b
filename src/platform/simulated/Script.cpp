#include "platform/simulated/Script.h"

#include "core/JSON.h"

#include <fmt/format.h>

#include <array>
#include <stdexcept>
#include <utility>

namespace ventolith::simulated {

namespace {

using core::JSONReader;
using Kind = core::DecodeError::Kind;

constexpr core::JSONBounds lineBounds{.bytes = 65536, .depth = 4, .membersOfAnObject = 1024, .values = 8192};
constexpr double longestSeconds = 1e9;

double readInRange(const JSONReader& reader, double lowest, double highest) {
  const double number = reader.asDouble();
  if (number < lowest || number > highest) {
    reader.fail(Kind::dataCorrupted, fmt::format("expected a number from {} to {}", lowest, highest));
  }
  return number;
}

runtime::Duration readSpan(const JSONReader& reader) {
  return runtime::fromSeconds(readInRange(reader, 0, longestSeconds));
}

/// The members of an object, each read by `read`; null gives none.
template <class Read>
auto readMembers(const JSONReader& reader, Read read) {
  reader.expectObject();
  std::map<std::string, std::optional<decltype(read(reader))>> members;
  for (const auto& [key, value] : reader.value().items()) {
    const auto member = reader.find(key);
    members[key] = member ? std::optional(read(*member)) : std::nullopt;
  }
  return members;
}

std::uint8_t readRefusal(const JSONReader& reader) {
  const std::int64_t code = reader.asInteger();
  if (code < 1 || code > 255) reader.fail(Kind::dataCorrupted, "expected a result from 1 to 255, or null");
  return static_cast<std::uint8_t>(code);
}

DriverFailure readDriverFailure(const JSONReader& reader) {
  if (reader.value() == "write") return DriverFailure::writes;
  if (!reader.value().is_boolean()) reader.fail(Kind::typeMismatch, "expected true, false or \"write\"");
  return reader.asBoolean() ? DriverFailure::all : DriverFailure::none;
}

core::FanID readFanNumber(const JSONReader& reader, std::int64_t number) {
  if (number < 0 || number > 9) reader.fail(Kind::dataCorrupted, "expected a fan from 0 to 9");
  return static_cast<core::FanID>(number);
}

std::map<core::FanID, runtime::Duration> readReclaims(const JSONReader& reader) {
  std::map<core::FanID, runtime::Duration> reclaims;
  if (reader.value().is_array()) {
    for (std::size_t place = 0; place < reader.size(); ++place) {
      const auto element = reader.element(place);
      reclaims[readFanNumber(element, element.asInteger())] = runtime::Duration::zero();
    }
    return reclaims;
  }
  if (!reader.value().is_object())
    reader.fail(Kind::typeMismatch, "expected a list of fans, or an object of spans");
  for (const auto& [key, value] : reader.value().items()) {
    const auto span = reader.at(key);
    const bool isDigit = key.size() == 1 && key[0] >= '0' && key[0] <= '9';
    reclaims[readFanNumber(span, isDigit ? key[0] - '0' : -1)] = readSpan(span);
  }
  return reclaims;
}

SensorState readSensorState(const JSONReader& reader) {
  const std::string& word = reader.asString();
  if (word == "gone") return SensorState::gone;
  if (word == "frozen") return SensorState::frozen;
  if (word == "back") return SensorState::working;
  reader.fail(Kind::dataCorrupted, "expected \"gone\", \"frozen\" or \"back\"");
}

std::string readType(const JSONReader& reader) {
  const std::string& type = reader.asString();
  if (type.size() != 4) reader.fail(Kind::dataCorrupted, "expected four characters, or null");
  return type;
}

std::vector<std::string> readNames(const JSONReader& reader) {
  return core::readList(reader, [](const JSONReader& name) { return name.asString(); });
}

void readMember(std::string_view name, const JSONReader& member, ScriptLine& line) {
  ScriptChange& change = line.change;
  if (name == "at") {
    line.at = readSpan(member);
  } else if (name == "load") {
    change.load = readInRange(member, 0, 1);
  } else if (name == "temps") {
    change.temperatures =
        readMembers(member, [](const JSONReader& value) { return readInRange(value, -1000, 1000); });
  } else if (name == "refuse") {
    change.refusals = readMembers(member, readRefusal);
  } else if (name == "driverFailure") {
    for (const auto& [key, failure] : readMembers(member, readDriverFailure)) {
      change.driverFailures[key] = failure.value_or(DriverFailure::none);
    }
  } else if (name == "reclaim") {
    change.reclaims = readReclaims(member);
  } else if (name == "sensors") {
    change.sensors = readSensorState(member);
  } else if (name == "removeKeys") {
    change.removedKeys = readNames(member);
  } else if (name == "restoreKeys") {
    change.restoredKeys = readNames(member);
  } else if (name == "keyTypes") {
    change.keyTypes = readMembers(member, readType);
  } else {
    member.fail(Kind::dataCorrupted, "no such member is known");
  }
}

bool isBlank(std::string_view line) {
  return line.find_first_not_of(" \t\r") == std::string_view::npos;
}

ScriptLine parseNumberedLine(std::string_view text, std::size_t number) {
  try {
    ScriptLine line = parseScriptLine(text);
    if (!line.at) throw std::runtime_error("at: required key not found");
    line.number = number;
    return line;
  } catch (const std::runtime_error& error) {
    throw std::runtime_error(fmt::format("line {}: {}", number, error.what()));
  }
}

} // namespace

ScriptLine parseScriptLine(std::string_view text) {
  const core::JSON document = core::parseJSON(text, lineBounds);
  const JSONReader root(document);
  root.expectObject();
  ScriptLine line;
  for (const auto& [key, value] : document.items())
    readMember(key, root.at(key), line);
  return line;
}

std::vector<ScriptLine> parseScript(std::string_view text) {
  std::vector<ScriptLine> lines;
  std::size_t number = 0;
  while (!text.empty()) {
    const std::size_t end = text.find('\n');
    const std::string_view line = text.substr(0, end);
    text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    ++number;
    if (!isBlank(line)) lines.push_back(parseNumberedLine(line, number));
  }
  return lines;
}

} // namespace ventolith::simulated
