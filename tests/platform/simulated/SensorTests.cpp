// The hub, the keys, and what the project's own reader makes of them.
#include "hardware/SensorReader.h"
#include "platform/simulated/Bench.h"

#include <gtest/gtest.h>

#include <cmath>

namespace ventolith::simulated {
namespace {

/// A machine as the project's own reader sees it.
struct ReaderBench : Bench {
  explicit ReaderBench(std::string_view machine) : Bench(machine) { clock.run(connectionOfReader.open()); }

  core::SensorSnapshot snapshot() { return clock.run(reader.snapshot()); }

  std::unique_ptr<hardware::HIDBridge> bridge = hidBridge(mac);
  hardware::SMCConnection connectionOfReader{context.get_executor(), *client};
  hardware::SensorReader reader{context.get_executor(), connectionOfReader, *bridge, clock,
                                [](const std::string&) {}};
};

std::vector<std::string> keysOf(const core::SensorSnapshot& snapshot) {
  std::vector<std::string> keys;
  for (const core::TempSensor& sensor : snapshot.temps)
    keys.push_back(sensor.key);
  return keys;
}

TEST(SimulatedHub, SamplesDifferALittle) {
  Bench bench("macbook-pro");
  const auto first = bench.mac->sampleHub(0);
  const auto second = bench.mac->sampleHub(0);
  EXPECT_NE(*first, *second);
  EXPECT_NEAR(*first, 44.6, 0.06);
  EXPECT_NEAR(*second, 44.6, 0.06);
}

TEST(SimulatedHub, ServiceThatIsNoneIsNotSampled) {
  Bench bench("macbook-pro");
  EXPECT_EQ(bench.mac->sampleHub(bench.mac->hubLabels().size()), std::nullopt);
  EXPECT_EQ(hidBridge(bench.mac)->sampleTemperature({"made up", nullptr}), std::nullopt);
}

TEST(SimulatedHub, MiniHasNone) {
  MiniBench bench;
  const auto bridge = hidBridge(bench.mac);
  EXPECT_FALSE(bridge->isAvailable());
  EXPECT_FALSE(bridge->discoverLabeledTemperatureServices().has_value());
}

TEST(SimulatedHub, NoiseIsTheSameForASeedAndAnotherForAnother) {
  const auto samples = [](std::uint64_t seed) {
    Bench bench("macbook-pro", seed);
    std::vector<double> taken;
    for (int round = 0; round < 20; ++round) {
      bench.pass(0.3);
      taken.push_back(*bench.mac->sampleHub(3));
      taken.push_back(*bench.read("TCHP"));
    }
    return taken;
  };
  EXPECT_EQ(samples(7), samples(7));
  EXPECT_NE(samples(7), samples(8));
}

TEST(SimulatedHub, ModelDoesNotDependOnHowOftenItIsLookedAt) {
  const auto celsius = [](int looks) {
    Bench bench("macbook-pro");
    bench.mac->setLoad(0.7);
    for (int look = 0; look < looks; ++look) {
      bench.pass(120.0 / looks);
      static_cast<void>(bench.mac->fans());
    }
    bench.mac->setSensors(SensorState::frozen); // Takes the noise away.
    return std::pair(*bench.mac->sampleHub(0), bench.mac->fans()[1].speed());
  };
  EXPECT_EQ(celsius(1), celsius(1000));
}

TEST(SimulatedHub, LongGapEndsWhereTheMachineSettles) {
  Bench bench("macbook-pro");
  bench.mac->setLoad(1);
  bench.pass(100.0 * 24 * 3600);
  const double settled = bench.mac->fans()[0].speed();
  bench.pass(600);
  EXPECT_NEAR(bench.mac->fans()[0].speed(), settled, 20);
}

TEST(SimulatedSensors, LaptopShowsItsHub) {
  ReaderBench bench("macbook-pro");
  const auto snapshot = bench.snapshot();
  EXPECT_EQ(snapshot.fans.size(), 2U);
  EXPECT_EQ(keysOf(snapshot), (std::vector<std::string>{"SoC", "GPU MTR Temp Sensor1", "GPU MTR Temp Sensor4",
                                                        "NAND CH0 temp", "gas gauge battery"}));
}

TEST(SimulatedSensors, MiniFallsBackToItsKeys) {
  ReaderBench bench("mac-mini");
  EXPECT_EQ(keysOf(bench.snapshot()), (std::vector<std::string>{"TCHP", "TCMb", "TG0D", "TD00"}));
}

TEST(SimulatedSensors, FanlessLaptopHasTemperaturesAndNoFans) {
  ReaderBench bench("macbook-air");
  const auto snapshot = bench.snapshot();
  EXPECT_TRUE(snapshot.fans.empty());
  EXPECT_EQ(snapshot.temps.size(), 5U);
}

TEST(SimulatedSensors, GoneLeaveNothingAtAllAndComeBack) {
  for (const char* const machine : {"macbook-pro", "mac-mini", "mac-pro"}) {
    ReaderBench bench(machine);
    const auto before = bench.snapshot();
    bench.mac->setSensors(SensorState::gone);
    EXPECT_TRUE(bench.snapshot().temps.empty()) << machine;
    bench.mac->setSensors(SensorState::working);
    EXPECT_EQ(keysOf(bench.snapshot()), keysOf(before)) << machine;
  }
}

TEST(SimulatedSensors, FrozenOnesAreConstantWhileTheMachineWarmsUp) {
  Bench bench("macbook-pro");
  bench.mac->setSensors(SensorState::frozen);
  const auto before = bench.mac->sampleHub(0);
  bench.mac->setLoad(1);
  bench.pass(60);
  EXPECT_EQ(bench.mac->sampleHub(0), before);
  bench.mac->setSensors(SensorState::working);
  EXPECT_GT(*bench.mac->sampleHub(0), *before + 10);
}

TEST(SimulatedSensors, FrozenHubKeepsBatteryAndStorageAlone) {
  ReaderBench bench("macbook-pro");
  bench.mac->setSensors(SensorState::frozen);
  EXPECT_EQ(keysOf(bench.snapshot()), (std::vector<std::string>{"NAND CH0 temp", "gas gauge battery"}));
}

TEST(SimulatedSensors, PinnedLabelIsStillNotConstantAndNeverLower) {
  ReaderBench bench("macbook-pro");
  bench.mac->pinTemperature("GPU MTR Temp Sensor1", 95);
  const auto snapshot = bench.snapshot();
  ASSERT_EQ(snapshot.temps[1].key, "GPU MTR Temp Sensor1");
  EXPECT_GE(snapshot.temps[1].celsius, 95.0);
  EXPECT_LT(snapshot.temps[1].celsius, 95.001);
}

TEST(SimulatedSensors, PinnedKeyReadsAsPinnedUntilItIsLetGo) {
  MiniBench bench;
  bench.mac->pinTemperature("TCHP", 96.5);
  EXPECT_EQ(bench.read("TCHP"), 96.5);
  EXPECT_EQ(bench.read("TCHP"), 96.5);
  bench.mac->pinTemperature("TCHP", std::nullopt);
  EXPECT_NEAR(*bench.read("TCHP"), 41.2, 0.1);
}

TEST(SimulatedSensors, GoneServiceSamplesAsNotANumber) {
  Bench bench("macbook-pro");
  bench.mac->setSensors(SensorState::gone);
  EXPECT_TRUE(std::isnan(*bench.mac->sampleHub(0)));
  EXPECT_TRUE(bench.mac->hubLabels().empty());
}

} // namespace
} // namespace ventolith::simulated
