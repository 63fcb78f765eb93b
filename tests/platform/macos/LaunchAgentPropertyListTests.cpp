#include "platform/macos/service/LaunchAgentPropertyList.h"

#include "app/platform-kit/PropertyList.h"

#include <gtest/gtest.h>

namespace {

using ventolith::app::parsePropertyList;
using ventolith::platform::LaunchAgent;
using ventolith::platform::propertyListOf;

LaunchAgent agent() {
  return {.name = "com.example.agent",
          .arguments = {"/opt/the helper", "--allow-same-user"},
          .environment = {{"A", "1"}, {"B", "two words"}},
          .output = "/tmp/agent.log"};
}

TEST(LaunchAgentPropertyList, IsWhatLaunchdIsTold) {
  EXPECT_EQ(propertyListOf(agent()), R"(<?xml version="1.0" encoding="UTF-8"?>
<!DOCTYPE plist PUBLIC "-//Apple//DTD PLIST 1.0//EN" "http://www.apple.com/DTDs/PropertyList-1.0.dtd">
<plist version="1.0">
<dict>
<key>Label</key><string>com.example.agent</string>
<key>ProgramArguments</key><array>
<string>/opt/the helper</string>
<string>--allow-same-user</string>
</array>
<key>MachServices</key><dict>
<key>com.example.agent</key><true/>
</dict>
<key>EnvironmentVariables</key><dict>
<key>A</key><string>1</string>
<key>B</key><string>two words</string>
</dict>
<key>StandardOutPath</key><string>/tmp/agent.log</string>
<key>StandardErrorPath</key><string>/tmp/agent.log</string>
<key>RunAtLoad</key><true/>
<key>KeepAlive</key><dict>
<key>SuccessfulExit</key><false/>
</dict>
<key>ThrottleInterval</key><integer>1</integer>
</dict>
</plist>
)");
}

TEST(LaunchAgentPropertyList, CarriesAnyTextAsText) {
  LaunchAgent its = agent();
  its.name = "a<b>&amp;\"'";
  its.output = "</string><true/>\x01\x1B tab\t line\n \xC3\xA4";
  const auto list = parsePropertyList(propertyListOf(its));
  ASSERT_TRUE(list.has_value()) << list.error().description;
  EXPECT_EQ(std::get<std::string>(list->at("Label")), its.name);
  EXPECT_EQ(std::get<std::string>(list->at("StandardOutPath")), "</string><true/> tab\t line\n \xC3\xA4");
}

TEST(LaunchAgentPropertyList, EscapesKeysToo) {
  LaunchAgent its = agent();
  its.environment = {{"</key><true/><key>", "x"}};
  EXPECT_TRUE(parsePropertyList(propertyListOf(its)).has_value());
  EXPECT_NE(propertyListOf(its).find("<key>&lt;/key&gt;&lt;true/&gt;&lt;key&gt;</key>"), std::string::npos);
}

} // namespace
