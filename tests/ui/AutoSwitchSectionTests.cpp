#include "PresetsFixture.h"

namespace ventolith::ui {
namespace {

using Settings = core::AutoSwitchSettings;

class AutoSwitchSectionTest : public PresetsTest {
protected:
  AutoSwitchSection& section() { return view->autoSwitch(); }
};

TEST_F(AutoSwitchSectionTest, SaysWhatItDoes) {
  beginAndShow();
  for (const char* text :
       {"Auto-switch", "Switch presets automatically on power source", "On battery →", "On AC power →",
        "Ventolith switches to the chosen preset when you plug in or unplug. Overrides your "
        "manual choice when the power source changes.",
        "Currently: unknown power source"})
    EXPECT_TRUE(shows(section(), text)) << text;
}

TEST_F(AutoSwitchSectionTest, SaysWhereThePowerComesFrom) {
  beginAndShow();
  plugInto(app::PowerSource::battery);
  turn();
  EXPECT_EQ(section().currently().text(), QStringLiteral("Currently: on battery"));
  plugInto(app::PowerSource::ac);
  turn();
  EXPECT_EQ(section().currently().text(), QStringLiteral("Currently: on AC power"));
}

TEST_F(AutoSwitchSectionTest, PickersAreEnabledWhileItIsOn) {
  beginAndShow();
  EXPECT_FALSE(section().onBattery().isEnabled());
  EXPECT_FALSE(section().onAC().isEnabled());
  click(section().enabledSwitch());
  turn();
  EXPECT_EQ(model->autoSwitch(), (Settings{.enabled = true}));
  EXPECT_TRUE(section().onBattery().isEnabled());
  EXPECT_TRUE(section().onAC().isEnabled());
}

TEST_F(AutoSwitchSectionTest, PickersListNoChangeAndThenThePresets) {
  beginAndShow();
  const QStringList expected{QStringLiteral("Don't change"), QStringLiteral("Quiet"),
                             QStringLiteral("Balanced"), QStringLiteral("Max")};
  EXPECT_EQ(section().onBattery().titles(), expected);
  EXPECT_EQ(section().onAC().titles(), expected);
  EXPECT_EQ(section().onBattery().current(), 0);
}

TEST_F(AutoSwitchSectionTest, EachControlChangesItsFieldAlone) {
  beginAndShow();
  model->setAutoSwitch({.enabled = true, .onACPresetID = PresetLibrary::maxID});
  turn();
  choose(section().onBattery(), 1);
  EXPECT_EQ(model->autoSwitch(), (Settings{.enabled = true,
                                           .onBatteryPresetID = PresetLibrary::quietID,
                                           .onACPresetID = PresetLibrary::maxID}));
  choose(section().onAC(), 0);
  EXPECT_EQ(model->autoSwitch(), (Settings{.enabled = true, .onBatteryPresetID = PresetLibrary::quietID}));
}

TEST_F(AutoSwitchSectionTest, PresetThatIsGoneIsNoEntry) {
  beginAndShow();
  const core::FanPreset mine = add("Mine", {});
  model->setAutoSwitch({.enabled = true, .onBatteryPresetID = mine.id});
  turn();
  EXPECT_EQ(section().onBattery().title(), QStringLiteral("Mine"));
  model->deletePreset(mine);
  turn();
  EXPECT_EQ(section().onBattery().current(), std::nullopt);
  EXPECT_EQ(section().onBattery().title(), QString());
}

TEST_F(AutoSwitchSectionTest, ControlsHaveSpokenNames) {
  beginAndShow();
  EXPECT_EQ(spoken(section().enabledSwitch()).text(QAccessible::Name),
            QStringLiteral("Switch presets automatically on power source"));
  EXPECT_EQ(spoken(section().onBattery()).text(QAccessible::Name), QStringLiteral("On battery →"));
  EXPECT_EQ(spoken(section().onAC()).text(QAccessible::Name), QStringLiteral("On AC power →"));
}

} // namespace
} // namespace ventolith::ui
