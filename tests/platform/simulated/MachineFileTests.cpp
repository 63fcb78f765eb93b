// Machines as data: the ones that are built in, files, and files that are none.
#include "core/JSON.h"
#include "platform/simulated/Bench.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <fstream>
#include <stdexcept>

namespace ventolith::simulated {
namespace {

core::JSON smallMachine() {
  return core::JSON::parse(R"({
    "name": "small", "model": "Small",
    "fans": [{"label": "Fan", "min": 1000, "max": 4000, "idle": 1000, "modeKey": "F0Md", "timeConstant": 1}],
    "latch": {"needed": false, "delay": 0, "refusal": 130},
    "firmware": {"zones": ["cpu"], "start": 50, "full": 90},
    "thermal": {"ambient": 20, "zones": [
      {"name": "cpu", "idleRise": 20, "loadRise": 60, "timeConstant": 10, "airflowEffect": 1}]},
    "keys": [
      {"key": "F0Ac", "type": "fpe2"}, {"key": "F0Md", "type": "ui8 "}, {"key": "F0Tg", "type": "flt "},
      {"key": "#KEY", "type": "ui32"}, {"key": "FNum", "type": "ui8 "},
      {"key": "TC0P", "type": "sp78", "zone": "cpu", "celsius": -0.5},
      {"key": "B0AC", "type": "si16", "value": -794},
      {"key": "RPlt", "type": "ch8*", "size": 8, "value": "J274"},
      {"key": "ODD!", "type": "{jst", "size": 3, "bytes": "0aff10"}]
  })");
}

SimulatedMac decoded(const core::JSON& document, runtime::Clock& clock) {
  return SimulatedMac(decodeMachine(document.dump()), clock, 1);
}

TEST(SimulatedMachineFile, EveryBuiltInMachineCanBeMadeAndAnswersEachOfItsKeys) {
  EXPECT_EQ(builtInMachines(),
            (std::vector<std::string>{"mac-mini", "mac-pro", "macbook-air", "macbook-pro"}));
  for (const std::string& name : builtInMachines()) {
    Bench bench(name);
    EXPECT_EQ(bench.mac->machine().name, name);
    EXPECT_EQ(bench.read("FNum"), static_cast<double>(bench.mac->machine().fans.size()));
    EXPECT_EQ(bench.read("#KEY"), static_cast<double>(bench.mac->machine().keys.size()));
    for (const KeyDescription& key : bench.mac->machine().keys) {
      bench.call(block(SMCParamStruct::Selector::readKey, key.name, key.size));
      EXPECT_EQ(bench.output.result, key.readResult) << name << " " << key.name;
    }
  }
}

TEST(SimulatedMachineFile, TypesAreEncodedAsTheFileSays) {
  struct Case {
    const char* key;
    std::uint32_t size;
    std::vector<std::uint8_t> bytes;
  };
  const Case cases[] = {
      {"F0Ac", 2, {0x0F, 0xA0}}, // 1000 RPM in quarters.
      {"FNum", 1, {1}},
      {"#KEY", 4, {0, 0, 0, 9}},
      {"B0AC", 2, {0xFC, 0xE6}},
      {"RPlt", 8, {'J', '2', '7', '4', 0, 0, 0, 0}},
      {"ODD!", 3, {0x0A, 0xFF, 0x10}},
  };
  boost::asio::io_context context;
  runtime::ManualClock clock(context);
  auto mac = decoded(smallMachine(), clock);
  const auto connection = *mac.open();
  for (const Case& expected : cases) {
    SMCParamStruct output;
    mac.call(connection, block(SMCParamStruct::Selector::readKey, expected.key, expected.size), output);
    EXPECT_EQ(output.result, 0) << expected.key;
    hardware::SMCBytes bytes = hardware::zeroSMCBytes;
    std::copy(expected.bytes.begin(), expected.bytes.end(), bytes.begin());
    EXPECT_EQ(output.bytes, bytes) << expected.key;
  }
}

TEST(SimulatedMachineFile, FixedPointTemperatureIsRoundedToItsUnits) {
  boost::asio::io_context context;
  runtime::ManualClock clock(context);
  auto mac = decoded(smallMachine(), clock);
  mac.pinTemperature("TC0P", -0.5);
  const auto connection = *mac.open();
  SMCParamStruct output;
  mac.call(connection, block(SMCParamStruct::Selector::readKey, "TC0P", 2), output);
  EXPECT_EQ(output.bytes[0], 0xFF);
  EXPECT_EQ(output.bytes[1], 0x80);
}

TEST(SimulatedMachineFile, WrongFilesAreRefusedWithTheirPlace) {
  struct Case {
    const char* pointer;
    const char* value;
    const char* failure;
  };
  const Case cases[] = {
      {"/name", "5", "name: expected a string, found a number"},
      {"/fans/0/max", "0", "fans[0].max: expected more than 0 RPM"},
      {"/fans/0/min", "5000", "fans[0].min: expected no more than the maximum"},
      {"/fans/0/timeConstant", "0", "fans[0].timeConstant: expected a number from 0.01 to 100000"},
      {"/fans/0/modeKey", "\"F0\"", "fans[0].modeKey: expected four printable ASCII characters"},
      {"/latch/refusal", "0", "latch.refusal: 0 is no refusal"},
      {"/firmware/full", "50", "firmware.full: expected more than the temperature of the start"},
      {"/firmware/zones", "[\"gpu\"]", "firmware.zones[0]: no thermal zone is named \"gpu\""},
      {"/keys/0/key", "\"F0A\\u00e9\"", "keys[0].key: expected four printable ASCII characters"},
      {"/keys/5/zone", "\"sun\"", "keys[5].zone: no thermal zone is named \"sun\""},
      {"/keys/7/size", "33", "keys[7].size: expected a size from 0 to 32"},
      {"/keys/7/size", "3", "keys[7].value: expected 3 bytes at the most"},
      {"/keys/6/size", "4", "keys[6].size: a \"si16\" has 2 bytes"},
      {"/keys/8/bytes", "\"0aff\"", "keys[8].bytes: expected 3 bytes in hexadecimal"},
      {"/keys/8/bytes", "\"0affxx\"", "keys[8].bytes: expected hexadecimal digits"},
      {"/keys/8/size", "null", "keys[8]: the type \"{jst\" implies no size, so \"size\" is required"},
  };
  for (const Case& wrong : cases) {
    core::JSON document = smallMachine();
    document[core::JSON::json_pointer(wrong.pointer)] = core::JSON::parse(wrong.value);
    try {
      static_cast<void>(decodeMachine(document.dump()));
      ADD_FAILURE() << wrong.pointer << " was accepted";
    } catch (const core::DecodeError& error) {
      EXPECT_STREQ(error.what(), wrong.failure);
    }
  }
}

struct SimulatedMachineOnDisk : testing::Test {
  std::string failureOf(std::string_view nameOrPath) {
    try {
      static_cast<void>(makeSimulatedMac(nameOrPath, clock, 1));
    } catch (const std::runtime_error& error) {
      return error.what();
    }
    return "";
  }

  boost::asio::io_context context;
  runtime::ManualClock clock{context};
  std::string path = testing::TempDir() + "small-machine.json";
};

TEST_F(SimulatedMachineOnDisk, IsReadFromItsFile) {
  std::ofstream(path) << smallMachine().dump();
  EXPECT_EQ(makeSimulatedMac(path, clock, 1)->machine().name, "small");
}

TEST_F(SimulatedMachineOnDisk, FailuresNameTheFileAndThePlace) {
  core::JSON document = smallMachine();
  document.erase("latch");
  std::ofstream(path) << document.dump();
  EXPECT_EQ(failureOf(path), "machine " + path + ": latch: required key not found");
  EXPECT_EQ(failureOf("/no/such.json"), "machine /no/such.json: the file cannot be opened");
  EXPECT_EQ(failureOf("toaster"),
            "no machine is named \"toaster\"; there are mac-mini, mac-pro, macbook-air, macbook-pro");
}

} // namespace
} // namespace ventolith::simulated
