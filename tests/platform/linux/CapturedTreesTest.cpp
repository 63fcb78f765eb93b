#include "platform/linux/HwmonTree.h"

#include "hardware/SMCConnection.h"
#include "hardware/SensorReader.h"
#include "runtime/ManualClock.h"

#include <boost/asio/io_context.hpp>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <cmath>
#include <fstream>

namespace ventolith::platform {
namespace {

using nlohmann::json;

json toJSON(const core::Fan& fan) {
  json text = {{"id", fan.id},
               {"name", fan.name},
               {"currentRPM", fan.currentRPM},
               {"minRPM", fan.minRPM},
               {"maxRPM", fan.maxRPM}};
  if (fan.mode) text["mode"] = *fan.mode;
  return text;
}

json toJSON(const core::TempSensor& sensor) {
  return {{"key", sensor.key},
          {"name", sensor.name},
          {"celsius", std::llround(sensor.celsius * 1000)}, // In thousandths: the keys carry single floats.
          {"category", core::rawValue(sensor.category)},
          {"source", core::rawValue(sensor.source)}};
}

core::SensorSnapshot snapshotOf(const HwmonTree& tree) {
  Driver driver(tree);
  boost::asio::io_context context;
  runtime::ManualClock clock(context);
  AbsentHIDBridge bridge;
  hardware::SMCConnection connection(context.get_executor(), driver.client);
  if (clock.run(connection.open())) throw std::runtime_error("did not open");
  hardware::SensorReader reader(context.get_executor(), connection, bridge, clock, [](const std::string&) {});
  return clock.run(reader.snapshot());
}

class CapturedTrees : public testing::TestWithParam<std::string> {};

TEST_P(CapturedTrees, ShowTheFansAndTemperaturesOfTheirFiles) {
  std::ifstream file(std::filesystem::path(VENTOLITH_DATA) / "hwmon" / GetParam() / "expected.json");
  json expected = json::parse(file);
  for (json& sensor : expected["temps"])
    sensor["celsius"] = std::llround(sensor["celsius"].get<double>() * 1000);

  const core::SensorSnapshot snapshot = snapshotOf(HwmonTree(GetParam()));

  json fans = json::array();
  for (const core::Fan& fan : snapshot.fans)
    fans.push_back(toJSON(fan));
  json temperatures = json::array();
  for (const core::TempSensor& sensor : snapshot.temps)
    temperatures.push_back(toJSON(sensor));
  EXPECT_EQ(fans.dump(1), expected["fans"].dump(1));
  EXPECT_EQ(temperatures.dump(1), expected["temps"].dump(1));
}

std::vector<std::string> treeNames() {
  std::vector<std::string> names;
  for (const auto& entry :
       std::filesystem::directory_iterator(std::filesystem::path(VENTOLITH_DATA) / "hwmon")) {
    if (entry.is_directory()) names.push_back(entry.path().filename().string());
  }
  std::ranges::sort(names);
  return names;
}

std::string testName(const testing::TestParamInfo<std::string>& info) {
  std::string name = info.param;
  std::ranges::replace(name, '-', '_');
  return name;
}

INSTANTIATE_TEST_SUITE_P(Data, CapturedTrees, testing::ValuesIn(treeNames()), testName);

} // namespace
} // namespace ventolith::platform
