#include "core/FanControlPlan.h"
#include "support/Plans.h"

#include <gtest/gtest.h>

#include <string>

namespace ventolith::core {
namespace {

const std::string presetText =
    R"({"id":"6F1C0E52-8C54-4D0B-9B0E-0E4C2C1B7A11","name":"Quiet","isBuiltIn":true,"plan":{"fans":[],"rules":[],)"
    R"("tuning":{"emaAlpha":0.3,"hysteresisCelsius":2,"maxDeltaRPMPerTick":400,"minDwellSeconds":3}}})";
const std::string batteryID = "0D4A7E10-5A2B-4E57-8B6E-2F1F6C9E3D02";

FanPreset presetOf(const JSON& document) {
  return readFanPreset(JSONReader(document));
}
AutoSwitchSettings settingsOf(const JSON& document) {
  return readAutoSwitchSettings(JSONReader(document));
}

TEST(PresetJSON, PresetIsReadAndWrittenLetterForLetter) {
  const FanPreset preset = presetOf(parseJSON(presetText));
  EXPECT_EQ(preset.name, "Quiet");
  EXPECT_TRUE(preset.isBuiltIn);
  EXPECT_EQ(preset.plan, FanControlPlan::allAutomatic);
  EXPECT_EQ(writeJSON(toJSON(preset)), presetText);
}

TEST(PresetJSON, EachRequiredKeyOfAPresetFailsWhenMissing) {
  for (const std::string key : {"id", "name", "isBuiltIn", "plan"}) {
    SCOPED_TRACE(key);
    JSON document = parseJSON(presetText);
    document.erase(key);
    try {
      (void)presetOf(document);
      FAIL() << "decoded";
    } catch (const DecodeError& error) {
      EXPECT_EQ(error.kind(), DecodeError::Kind::keyNotFound);
      EXPECT_EQ(error.path(), key);
    }
  }
}

TEST(PresetJSON, FailureInsideThePlanNamesTheWholePath) {
  JSON document = parseJSON(presetText);
  document["plan"]["tuning"].erase("emaAlpha");
  try {
    (void)presetOf(document);
    FAIL() << "decoded";
  } catch (const DecodeError& error) {
    EXPECT_EQ(error.path(), "plan.tuning.emaAlpha");
  }
}

TEST(AutoSwitchJSON, AbsentPresetsAreLeftOut) {
  EXPECT_EQ(writeJSON(toJSON(AutoSwitchSettings::off)), R"({"enabled":false})");
}

TEST(AutoSwitchJSON, SettingsAreReadAndWrittenLetterForLetter) {
  const std::string text = R"({"enabled":true,"onBatteryPresetID":")" + batteryID +
                           R"(","onACPresetID":"6F1C0E52-8C54-4D0B-9B0E-0E4C2C1B7A11"})";
  const AutoSwitchSettings settings = settingsOf(parseJSON(text));
  EXPECT_TRUE(settings.enabled);
  EXPECT_EQ(settings.onBatteryPresetID, uuidFromText(batteryID));
  EXPECT_EQ(writeJSON(toJSON(settings)), text);
}

TEST(AutoSwitchJSON, MissingAndNullPresetsAreAbsent) {
  EXPECT_EQ(settingsOf(parseJSON(R"({"enabled":false})")), AutoSwitchSettings::off);
  EXPECT_EQ(settingsOf(parseJSON(R"({"enabled":false,"onBatteryPresetID":null,"onACPresetID":null,"x":1})")),
            AutoSwitchSettings::off);
}

TEST(AutoSwitchJSON, OneOfTheTwoPresetsMayStandAlone) {
  const AutoSwitchSettings settings =
      settingsOf(parseJSON(R"({"enabled":true,"onBatteryPresetID":")" + batteryID + R"("})"));
  EXPECT_EQ(settings.onBatteryPresetID, uuidFromText(batteryID));
  EXPECT_EQ(settings.onACPresetID, std::nullopt);
}

TEST(AutoSwitchJSON, UnreadableSettingsFail) {
  for (const std::string text :
       {R"({})", R"({"enabled":null})", R"({"enabled":1})", R"({"enabled":true,"onACPresetID":"x"})",
        R"({"enabled":true,"onACPresetID":1})"}) {
    SCOPED_TRACE(text);
    EXPECT_THROW((void)settingsOf(parseJSON(text)), DecodeError);
  }
}

} // namespace
} // namespace ventolith::core
