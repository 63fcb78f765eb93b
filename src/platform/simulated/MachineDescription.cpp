#include "platform/simulated/MachineDescription.h"

#include "core/JSON.h"
#include "hardware/FanKeys.h"
#include "platform/simulated/SMCEncoding.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>

namespace ventolith::simulated {

namespace {

using core::JSONReader;
using Kind = core::DecodeError::Kind;

constexpr std::size_t mostKeys = 4096;
constexpr std::size_t mostHubSensors = 256;
constexpr std::size_t longestLabel = 200;

[[noreturn]] void failRange(const JSONReader& reader, std::string what) {
  reader.fail(Kind::dataCorrupted, std::move(what));
}

double readInRange(const JSONReader& reader, double lowest, double highest) {
  const double number = reader.asDouble();
  if (number < lowest || number > highest) {
    failRange(reader, fmt::format("expected a number from {} to {}", lowest, highest));
  }
  return number;
}

double readCelsius(const JSONReader& reader) {
  return readInRange(reader, -273.15, 1000);
}
double readSpeed(const JSONReader& reader) {
  return readInRange(reader, 0, 100000);
}
double readTimeConstant(const JSONReader& reader) {
  return readInRange(reader, 0.01, 100000);
}

std::uint8_t readByte(const JSONReader& reader) {
  const std::int64_t number = reader.asInteger();
  if (number < 0 || number > 255) failRange(reader, "expected a whole number from 0 to 255");
  return static_cast<std::uint8_t>(number);
}

std::string readFourCharacters(const JSONReader& reader) {
  const std::string& text = reader.asString();
  const bool isASCII =
      std::all_of(text.begin(), text.end(), [](char byte) { return byte >= 0x20 && byte < 0x7F; });
  if (text.size() != 4 || !isASCII) failRange(reader, "expected four printable ASCII characters");
  return text;
}

std::size_t readZone(const JSONReader& reader, const std::vector<ZoneDescription>& zones) {
  const std::string& name = reader.asString();
  const auto found = std::find_if(zones.begin(), zones.end(),
                                  [&name](const ZoneDescription& zone) { return zone.name == name; });
  if (found == zones.end()) failRange(reader, fmt::format("no thermal zone is named \"{}\"", name));
  return static_cast<std::size_t>(found - zones.begin());
}

ZoneDescription readZoneDescription(const JSONReader& reader) {
  return {
      .name = reader.at("name").asString(),
      .idleRise = readCelsius(reader.at("idleRise")),
      .loadRise = readCelsius(reader.at("loadRise")),
      .timeConstant = readTimeConstant(reader.at("timeConstant")),
      .airflowEffect = readInRange(reader.at("airflowEffect"), 0, 100),
  };
}

FanDescription readFan(const JSONReader& reader) {
  const FanDescription fan{
      .minimum = readSpeed(reader.at("min")),
      .maximum = readSpeed(reader.at("max")),
      .idle = readSpeed(reader.at("idle")),
      .modeKey = readFourCharacters(reader.at("modeKey")),
      .timeConstant = readTimeConstant(reader.at("timeConstant")),
  };
  if (fan.maximum <= 0) failRange(reader.at("max"), "expected more than 0 RPM");
  if (fan.minimum > fan.maximum) failRange(reader.at("min"), "expected no more than the maximum");
  if (fan.idle > fan.maximum) failRange(reader.at("idle"), "expected no more than the maximum");
  return fan;
}

LatchDescription readLatch(const JSONReader& reader) {
  const LatchDescription latch{
      .isNeeded = reader.at("needed").asBoolean(),
      .delay = runtime::fromSeconds(readInRange(reader.at("delay"), 0, 3600)),
      .refusal = readByte(reader.at("refusal")),
  };
  if (latch.refusal == 0) failRange(reader.at("refusal"), "0 is no refusal");
  return latch;
}

FirmwareDescription readFirmware(const JSONReader& reader, const std::vector<ZoneDescription>& zones) {
  FirmwareDescription firmware{
      .startCelsius = readCelsius(reader.at("start")),
      .fullCelsius = readCelsius(reader.at("full")),
      .zones = core::readList(reader.at("zones"),
                              [&zones](const JSONReader& zone) { return readZone(zone, zones); }),
  };
  if (firmware.fullCelsius <= firmware.startCelsius) {
    failRange(reader.at("full"), "expected more than the temperature of the start");
  }
  if (firmware.zones.empty()) failRange(reader.at("zones"), "expected one zone at the least");
  return firmware;
}

hardware::SMCBytes readHexadecimal(const JSONReader& reader, std::uint32_t size) {
  const std::string& text = reader.asString();
  if (text.size() != 2 * std::size_t{size})
    failRange(reader, fmt::format("expected {} bytes in hexadecimal", size));
  hardware::SMCBytes bytes = hardware::zeroSMCBytes;
  for (std::size_t place = 0; place < size; ++place) {
    const char* const digits = text.data() + 2 * place;
    const auto [end, error] = std::from_chars(digits, digits + 2, bytes[place], 16);
    if (error != std::errc() || end != digits + 2) failRange(reader, "expected hexadecimal digits");
  }
  return bytes;
}

hardware::SMCBytes readText(const JSONReader& reader, std::uint32_t size) {
  const std::string& text = reader.asString();
  if (text.size() > size) failRange(reader, fmt::format("expected {} bytes at the most", size));
  hardware::SMCBytes bytes = hardware::zeroSMCBytes;
  std::copy(text.begin(), text.end(), bytes.begin());
  return bytes;
}

std::uint32_t readSize(const JSONReader& reader, const std::string& type) {
  const auto implied = sizeOfType(type);
  const auto given = reader.find("size");
  if (!given && implied) return *implied;
  if (!given)
    failRange(reader, fmt::format("the type \"{}\" implies no size, so \"size\" is required", type));
  const std::int64_t size = given->asInteger();
  if (size < 0 || size > 32) failRange(*given, "expected a size from 0 to 32");
  if (implied && size != *implied) failRange(*given, fmt::format("a \"{}\" has {} bytes", type, *implied));
  return static_cast<std::uint32_t>(size);
}

hardware::SMCBytes readValue(const JSONReader& reader, const KeyDescription& key) {
  if (const auto bytes = reader.find("bytes")) return readHexadecimal(*bytes, key.size);
  const auto value = reader.find("value");
  if (!value) return hardware::zeroSMCBytes;
  if (value->value().is_string()) return readText(*value, key.size);
  const auto encoded = encodeNumber(key.type, value->asDouble());
  if (!encoded) failRange(*value, fmt::format("the type \"{}\" has no number: give \"bytes\"", key.type));
  return *encoded;
}

KeyDescription readKey(const JSONReader& reader, const std::vector<ZoneDescription>& zones) {
  KeyDescription key;
  key.name = readFourCharacters(reader.at("key"));
  key.type = readFourCharacters(reader.at("type"));
  key.size = readSize(reader, key.type);
  if (const auto result = reader.find("readResult")) key.readResult = readByte(*result);
  if (const auto zone = reader.find("zone")) {
    key.sensor = SensorDescription{readZone(*zone, zones), readCelsius(reader.at("celsius"))};
    if (!sizeOfType(key.type)) failRange(reader.at("type"), "a temperature needs a type with a number");
    return key;
  }
  key.bytes = readValue(reader, key);
  return key;
}

HubSensorDescription readHubSensor(const JSONReader& reader, const std::vector<ZoneDescription>& zones) {
  const std::string& label = reader.at("label").asString();
  if (label.empty() || label.size() > longestLabel) failRange(reader.at("label"), "expected 1 to 200 bytes");
  return {label, {readZone(reader.at("zone"), zones), readCelsius(reader.at("celsius"))}};
}

} // namespace

MachineDescription decodeMachine(std::string_view text) {
  const core::JSON document = core::parseJSON(text);
  const JSONReader root(document);
  MachineDescription machine;
  machine.name = root.at("name").asString();
  machine.model = root.at("model").asString();
  const auto thermal = root.at("thermal");
  machine.ambientCelsius = readCelsius(thermal.at("ambient"));
  machine.zones = core::readList(thermal.at("zones"), readZoneDescription);
  machine.fans = core::readList(root.at("fans"), readFan);
  if (machine.fans.size() > static_cast<std::size_t>(hardware::fankeys::nameableFans)) {
    failRange(root.at("fans"), "more fans than keys can name");
  }
  machine.latch = readLatch(root.at("latch"));
  machine.firmware = readFirmware(root.at("firmware"), machine.zones);
  const auto keys = root.at("keys");
  machine.keys =
      core::readList(keys, [&machine](const JSONReader& key) { return readKey(key, machine.zones); });
  if (machine.keys.size() > mostKeys) failRange(keys, fmt::format("more than {} keys", mostKeys));
  if (const auto hub = root.find("hub")) {
    machine.hub = core::readList(
        *hub, [&machine](const JSONReader& sensor) { return readHubSensor(sensor, machine.zones); });
    if (machine.hub->size() > mostHubSensors)
      failRange(*hub, fmt::format("more than {} sensors", mostHubSensors));
  }
  return machine;
}

} // namespace ventolith::simulated
