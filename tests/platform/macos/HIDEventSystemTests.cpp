#include "platform/macos/HIDEventSystem.h"

#include "MacTest.h"
#include "fake/SensorHub.h"

#include <map>
#include <optional>
#include <thread>

namespace ventolith::platform {
namespace {

const Log theSix = {
    "IOHIDEventSystemClientCreate",       "IOHIDEventSystemClientSetMatching",
    "IOHIDEventSystemClientCopyServices", "IOHIDServiceClientCopyProperty",
    "IOHIDServiceClientCopyEvent",        "IOHIDEventGetFloatValue",
};

class HIDEventSystemTest : public MacTest {
protected:
  /// The bridge over the hub as it is set by now.
  HIDEventSystem& bridge() {
    if (!bridge_) {
      interface_.emplace(fake::SensorHub::loader());
      bridge_.emplace(*interface_);
    }
    return *bridge_;
  }
  Log discoveredLabels() {
    const auto discovery = bridge().discoverLabeledTemperatureServices();
    Log labels;
    for (const auto& service : discovery.value().services)
      labels.push_back(service.label);
    return labels;
  }
  void setServices(std::vector<fake::SensorHub::Service> services) { hub_.services = std::move(services); }

  fake::SensorHub hub_{mac_};

private:
  std::optional<HIDInterface> interface_;
  std::optional<HIDEventSystem> bridge_;
};

std::optional<double> silent() {
  return std::nullopt;
}

// The interface

TEST_F(HIDEventSystemTest, EachOfTheSixIsLookedUpOnceInIOKit) {
  Log expected = {"open /System/Library/Frameworks/IOKit.framework/IOKit 2"};
  for (const std::string& name : theSix)
    expected.push_back("find " + name);
  EXPECT_TRUE(bridge().isAvailable());
  for (int time = 0; time < 2; ++time) {
    const auto discovery = bridge().discoverLabeledTemperatureServices();
    static_cast<void>(bridge().sampleTemperature(discovery.value().services.at(0)));
  }
  EXPECT_EQ(hub_.log, expected);
}

TEST_F(HIDEventSystemTest, LibraryThatDoesNotOpenIsNotSearched) {
  hub_.opens = false;
  EXPECT_FALSE(bridge().isAvailable());
  EXPECT_EQ(hub_.log.size(), 1U);
  EXPECT_FALSE(bridge().discoverLabeledTemperatureServices());
  EXPECT_EQ(bridge().sampleTemperature({"label", nullptr}), std::nullopt);
}

class MissingSymbolTest : public HIDEventSystemTest, public testing::WithParamInterface<std::string> {};

TEST_P(MissingSymbolTest, WithoutOneOfTheSixThereIsNoInterface) {
  hub_.missing = {GetParam()};
  EXPECT_FALSE(bridge().isAvailable());
  EXPECT_FALSE(bridge().discoverLabeledTemperatureServices());
  EXPECT_EQ(hub_.clientsMade, 0);
  EXPECT_EQ(bridge().sampleTemperature({"label", std::make_shared<int>(0)}), std::nullopt);
  EXPECT_EQ(hub_.eventsCopied, 0);
}

INSTANTIATE_TEST_SUITE_P(EachOfTheSix, MissingSymbolTest, testing::ValuesIn(theSix),
                         [](const auto& name) { return name.param; });

TEST(HIDInterfaceOfThisProcess, IsOneAndTheSameOnEveryThread) {
  const HIDInterface* other = nullptr;
  std::thread thread([&other] { other = &HIDInterface::ofThisProcess(); });
  const HIDInterface* const mine = &HIDInterface::ofThisProcess();
  thread.join();
  EXPECT_EQ(other, mine);
}

TEST(HIDInterfaceOfThisProcess, IsNotThereOnASystemWithoutTheLibrary) {
  EXPECT_FALSE(HIDEventSystem().isAvailable());
}

// Discovery

TEST_F(HIDEventSystemTest, ClientSeesTemperatureSensorsAlone) {
  ASSERT_TRUE(bridge().discoverLabeledTemperatureServices());
  EXPECT_EQ(hub_.matched,
            (std::map<std::string, std::int32_t>{{"PrimaryUsagePage", 65280}, {"PrimaryUsage", 5}}));
}

TEST_F(HIDEventSystemTest, ServicesAreFoundInOrder) {
  EXPECT_EQ(discoveredLabels(), mac_->hubLabels());
  EXPECT_GT(hub_.services.size(), 10U);
}

TEST_F(HIDEventSystemTest, WithoutAClientNothingIsFound) {
  hub_.givesClient = false;
  EXPECT_FALSE(bridge().discoverLabeledTemperatureServices());
}

TEST_F(HIDEventSystemTest, WithoutServicesNothingIsFoundAndTheClientGoes) {
  hub_.givesServices = false;
  EXPECT_FALSE(bridge().discoverLabeledTemperatureServices());
  EXPECT_EQ(hub_.clientsMade, 1);
}

TEST_F(HIDEventSystemTest, NoServicesAtAllIsADiscoveryToo) {
  setServices({});
  EXPECT_EQ(discoveredLabels(), Log{});
}

TEST_F(HIDEventSystemTest, ServiceWithoutAReadableLabelIsLeftOut) {
  using NoString = fake::SensorHub::NoString;
  setServices({{std::monostate(), silent},
               {"first", silent},
               {"", silent},
               {NoString(), silent},
               {std::string("\0", 1), silent}, // Which the fake cannot give in UTF-8.
               {"second", silent}});
  EXPECT_EQ(discoveredLabels(), (Log{"first", "second"}));
}

TEST_F(HIDEventSystemTest, LabelsComeWhole) {
  const std::string longLabel(3000, 'x');
  const std::string widestLabel = "\u20AC\u20AC"; // Three bytes each, and not one to spare.
  setServices({{"Größe \U0001F321", silent}, {longLabel, silent}, {widestLabel, silent}});
  EXPECT_EQ(discoveredLabels(), (Log{"Größe \U0001F321", longLabel, widestLabel}));
}

TEST_F(HIDEventSystemTest, EachDiscoveryHasAClientOfItsOwn) {
  const auto first = bridge().discoverLabeledTemperatureServices();
  const auto second = bridge().discoverLabeledTemperatureServices();
  EXPECT_EQ(hub_.clientsMade, 2);
  EXPECT_NE(first->client, second->client);
}

// Sampling

TEST_F(HIDEventSystemTest, SampleIsTheEventsTemperature) {
  setServices({{"first", [] { return 41.5; }}, {"second", [] { return -3.25; }}});
  const auto discovery = bridge().discoverLabeledTemperatureServices();
  EXPECT_EQ(bridge().sampleTemperature(discovery->services.at(0)), 41.5);
  EXPECT_EQ(bridge().sampleTemperature(discovery->services.at(1)), -3.25);
}

TEST_F(HIDEventSystemTest, ServiceThatDoesNotAnswerNowHasNoSample) {
  bool answers = false;
  setServices({{"first", [&answers] { return answers ? std::optional(50.0) : std::nullopt; }}});
  const auto discovery = bridge().discoverLabeledTemperatureServices();
  EXPECT_EQ(bridge().sampleTemperature(discovery->services.at(0)), std::nullopt);
  answers = true;
  EXPECT_EQ(bridge().sampleTemperature(discovery->services.at(0)), 50.0);
}

TEST_F(HIDEventSystemTest, ServiceThatIsNoneHasNoSample) {
  EXPECT_EQ(bridge().sampleTemperature({"label", nullptr}), std::nullopt);
  EXPECT_EQ(hub_.eventsCopied, 0);
}

TEST_F(HIDEventSystemTest, RoundsOfSamplesAreTakenOfEveryService) {
  setServices({{"one", [] { return 40.0; }}, {"silent", silent}});
  const auto discovery = bridge().discoverLabeledTemperatureServices();
  const auto readings =
      time_.clock.run(hardware::sampleTemperatures(bridge(), time_.clock, discovery->services, 3));
  ASSERT_EQ(readings.size(), 2U);
  EXPECT_EQ(readings[0].samples, (std::vector<double>{40, 40, 40}));
  EXPECT_EQ(readings[1].samples, std::vector<double>{});
  EXPECT_EQ(hub_.eventsCopied, 6);
}

} // namespace
} // namespace ventolith::platform
