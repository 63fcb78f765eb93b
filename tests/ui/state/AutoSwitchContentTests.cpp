#include "ui/state/AutoSwitchContent.h"

#include "ui/state/Text.h"

#include <gtest/gtest.h>

namespace ventolith::ui {
namespace {

using app::PowerSource;
using support::utf8;

const std::vector<core::FanPreset> presets = {{.name = "Quiet"}, {.name = "Max"}};
const core::AutoSwitchSettings chosen{
    .enabled = true, .onBatteryPresetID = presets[0].id, .onACPresetID = presets[1].id};

TEST(AutoSwitch, PickersListNoChangeAndThenThePresets) {
  const AutoSwitchContent content = autoSwitchContent(chosen, presets, PowerSource::ac);
  for (const PresetPicker& picker : {content.onBattery, content.onAC}) {
    ASSERT_EQ(picker.entries.size(), 3U);
    EXPECT_EQ(utf8(picker.entries[0].title), "Don't change");
    EXPECT_FALSE(picker.entries[0].value);
    EXPECT_EQ(utf8(picker.entries[1].title), "Quiet");
    EXPECT_EQ(picker.entries[1].value, presets[0].id);
    EXPECT_EQ(utf8(picker.entries[2].title), "Max");
  }
}

TEST(AutoSwitch, PickersMarkWhatIsChosen) {
  const AutoSwitchContent content = autoSwitchContent(chosen, presets, PowerSource::ac);
  EXPECT_EQ(content.onBattery.selected, 1U);
  EXPECT_EQ(content.onAC.selected, 2U);
  EXPECT_EQ(autoSwitchContent({}, presets, PowerSource::ac).onAC.selected, 0U);
}

TEST(AutoSwitch, PresetThatIsGoneMarksNothing) {
  const core::AutoSwitchSettings settings{.enabled = true, .onBatteryPresetID = core::makeUUID()};
  EXPECT_FALSE(autoSwitchContent(settings, presets, PowerSource::ac).onBattery.selected);
}

TEST(AutoSwitch, PickersAreDisabledWhileItIsOff) {
  const AutoSwitchContent on = autoSwitchContent(chosen, presets, PowerSource::ac);
  EXPECT_TRUE(on.isOn);
  EXPECT_TRUE(on.arePickersEnabled);
  const AutoSwitchContent off = autoSwitchContent(withAutoSwitch(chosen, false), presets, PowerSource::ac);
  EXPECT_FALSE(off.isOn);
  EXPECT_FALSE(off.arePickersEnabled);
}

TEST(AutoSwitch, SaysWhereThePowerComesFrom) {
  struct Row {
    PowerSource source;
    const char* text;
  };
  const Row rows[] = {{PowerSource::ac, "Currently: on AC power"},
                      {PowerSource::battery, "Currently: on battery"},
                      {PowerSource::unknown, "Currently: unknown power source"}};
  for (const Row& row : rows)
    EXPECT_EQ(utf8(autoSwitchContent(chosen, presets, row.source).currently), row.text);
}

TEST(AutoSwitch, EachEditChangesItsFieldAlone) {
  core::AutoSwitchSettings expected = chosen;
  expected.enabled = false;
  EXPECT_EQ(withAutoSwitch(chosen, false), expected);
  expected = chosen;
  expected.onBatteryPresetID = presets[1].id;
  EXPECT_EQ(withOnBattery(chosen, presets[1].id), expected);
  expected = chosen;
  expected.onACPresetID = std::nullopt;
  EXPECT_EQ(withOnAC(chosen, std::nullopt), expected);
}

TEST(AutoSwitch, SectionKeepsItsWords) {
  const AutoSwitchTexts texts = autoSwitchTexts();
  EXPECT_EQ(utf8(texts.heading), "Auto-switch");
  EXPECT_EQ(utf8(texts.switchLabel), "Switch presets automatically on power source");
  EXPECT_EQ(utf8(texts.onBattery), "On battery →");
  EXPECT_EQ(utf8(texts.onAC), "On AC power →");
  EXPECT_EQ(utf8(texts.caption),
            "Ventolith switches to the chosen preset when you plug in or unplug. Overrides "
            "your manual choice when the power source changes.");
}

} // namespace
} // namespace ventolith::ui
