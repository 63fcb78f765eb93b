#include "helper/link/HelperBuildVersion.h"
#include "helper/link/HelperMessage.h"

#include <gtest/gtest.h>

#include <regex>

namespace ventolith::helper {
namespace {

struct Case {
  HelperMessage message;
  std::string_view name;
  bool changesAnything;
};

const Case cases[] = {
    {messages::HelperVersion{}, "HelperVersion", false},
    {messages::ShutdownForUpgrade{}, "ShutdownForUpgrade", true},
    {messages::SetManualRPM{}, "SetManualRPM", true},
    {messages::SetPercent{}, "SetPercent", true},
    {messages::FullBlast{}, "FullBlast", true},
    {messages::Automatic{}, "Automatic", true},
    {messages::ApplyConfig{}, "ApplyConfig", true},
    {messages::RestoreAuto{}, "RestoreAuto", true},
    {messages::Heartbeat{}, "Heartbeat", false},
    {messages::ReadState{}, "ReadState", false},
};

TEST(HelperMessageTest, AreTenInTheOrderOfTheProtocol) {
  ASSERT_EQ(std::size(cases), std::variant_size_v<HelperMessage>);
  for (std::size_t place = 0; place < std::size(cases); ++place)
    EXPECT_EQ(cases[place].message.index(), place) << cases[place].name;
}

TEST(HelperMessageTest, HaveNames) {
  for (const Case& asked : cases)
    EXPECT_EQ(nameOf(asked.message), asked.name);
}

TEST(HelperMessageTest, TellWhetherTheyChangeAnything) {
  for (const Case& asked : cases)
    EXPECT_EQ(changesAnything(asked.message), asked.changesAnything) << asked.name;
}

TEST(HelperBuildVersionTest, IsAVersionAPlusSignAndABuildNumber) {
  EXPECT_TRUE(std::regex_match(HelperBuildVersion::identifier, std::regex(R"(\d+\.\d+\.\d+\+\d+)")))
      << HelperBuildVersion::identifier;
}

} // namespace
} // namespace ventolith::helper
