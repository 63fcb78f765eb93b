// Each screen as assistive technology finds it, and as the keyboard goes through it.
#include "e2e/window/WindowWithTray.h"

#include <algorithm>
#include <set>
#include <utility>

namespace ventolith::e2e {

using nlohmann::json;

namespace {

const std::set<std::string> rolesOfControls{"check box", "combo box",   "list item", "push button",
                                            "slider",    "spin button", "text"};

/// The sidebar's rows are one stop, and the curve's points stand for their chart.
bool isStop(const Accessible& element) {
  if (!element.is("focusable") || !element.is("enabled")) return false;
  if (element.role == "list" || element.role == "chart") return false;
  return !element.is("selectable") || element.role != "list item" || element.is("selected");
}

bool contains(const Box& outer, const Box& inner) {
  return outer.x <= inner.x && outer.y <= inner.y && inner.x + inner.width <= outer.x + outer.width &&
         inner.y + inner.height <= outer.y + outer.height;
}

/// As one reads: on to the right, down, or up to the top of a further column; or into what was reached.
bool isReadAfter(const Box& before, const Box& after) {
  if (contains(before, after)) return true;
  const int shared = std::min(before.y + before.height, after.y + after.height) - std::max(before.y, after.y);
  if (2 * shared > std::min(before.height, after.height)) return after.x > before.x;
  return after.y > before.y || after.x >= before.x + before.width;
}

std::string spoken(const Accessible& element) {
  return element.role + " \"" + element.name + "\" (" + element.description + ")";
}

/// What is wrong with a control that can have the keyboard; empty for nothing.
std::string complaint(const Accessible& element) {
  if (element.name.empty()) return "has no name";
  if (!rolesOfControls.contains(element.role)) return "is no control";
  const bool hasNumber = element.role == "slider" || element.role == "spin button";
  if (hasNumber && !element.value) return "has no value";
  if (hasNumber && element.value->least >= element.value->most) return "has no range";
  if (hasNumber && element.value->step <= 0) return "has no step";
  if (element.role == "check box" && !element.canDo("Toggle")) return "cannot be toggled";
  if (element.role == "push button" && !element.canDo("Press")) return "cannot be pressed";
  if (element.role == "combo box" && !element.canDo("ShowMenu")) return "cannot be opened";
  if (element.role == "combo box" && element.text.value_or("").empty()) return "does not tell what is chosen";
  return {};
}

class AccessibleWindow : public WindowWithTray {
protected:
  void expectEveryControlIsKnown(const std::vector<Accessible>& shown) const {
    for (const Accessible& element : shown) {
      if (!isStop(element)) continue;
      EXPECT_EQ(complaint(element), "") << spoken(element);
    }
  }

  /// Where the keyboard goes until it comes around, told from `first` on.
  [[nodiscard]] std::vector<Accessible> tabRound(const Accessible& first) {
    constexpr std::size_t longest = 60;
    std::vector<Accessible> round{tree.focused()};
    for (;;) {
      hands.press({"Tab"});
      const Accessible next = tree.focused();
      if (next.id == round.front().id) break;
      round.push_back(next);
      if (round.size() > longest) throw std::runtime_error("the keyboard does not come around");
    }
    std::ranges::rotate(round, std::ranges::find(round, first.id, &Accessible::id));
    return round;
  }

  /// The screen scrolls under the keyboard: all places are those of one moment, `shown`.
  static void expectTabReachesAllInOrder(const std::vector<Accessible>& round,
                                         const std::vector<Accessible>& shown) {
    std::vector<Accessible> stops;
    std::ranges::copy_if(shown, std::back_inserter(stops), isStop);
    std::vector<Accessible> reached;
    for (const Accessible& stop : round) {
      const auto its = std::ranges::find(stops, stop.id, &Accessible::id);
      if (its == stops.end())
        ADD_FAILURE() << "Tab reaches " << spoken(stop);
      else
        reached.push_back(*its);
    }
    for (const Accessible& stop : stops)
      EXPECT_NE(std::ranges::find(reached, stop.id, &Accessible::id), reached.end())
          << "Tab does not reach " << spoken(stop);
    for (std::size_t at = 1; at < reached.size(); ++at)
      EXPECT_TRUE(isReadAfter(reached[at - 1].box, reached[at].box))
          << spoken(reached[at]) << " comes after " << spoken(reached[at - 1]);
  }
};

class AccessibleScreen : public AccessibleWindow, public testing::WithParamInterface<const char*> {};

TEST_P(AccessibleScreen, TellsWhatEachControlIsAndTabGoesThroughThemAsOneReads) {
  start();
  enableHelper();
  if (std::string(GetParam()) == "Rules") {
    goTo("Rules");
    click("push button", "Create your first rule");
    static_cast<void>(find("check box", "Enabled"));
  }
  if (std::string(GetParam()) != "Dashboard") goTo(GetParam());
  const std::vector<Accessible> shown = tree.all({});
  expectEveryControlIsKnown(shown);
  expectTabReachesAllInOrder(tabRound(find("list item", GetParam())), shown);
}

INSTANTIATE_TEST_SUITE_P(Screens, AccessibleScreen,
                         testing::Values("Dashboard", "Fan Curves", "Rules", "Presets", "About"),
                         [](const auto& info) {
                           std::string name = info.param;
                           std::erase(name, ' ');
                           return name;
                         });

TEST_F(AccessibleWindow, PanelTellsWhatEachControlIsAndTabGoesThroughThemAsOneReads) {
  startInTray();
  enableHelper();
  closeWindow();
  const Accessible opened = openPanel();
  hands.press({"Tab"});
  const std::vector<Accessible> shown = tree.all({.role = "", .within = opened.id});
  expectEveryControlIsKnown(shown);
  expectTabReachesAllInOrder(tabRound(find("slider", "Fan 0 speed")), shown);
}

TEST_F(AccessibleWindow, HintsComeAsDescriptions) {
  startInTray();
  enableHelper();
  const auto expectHint = [this](const std::string& role, const std::string& name, const std::string& hint) {
    EXPECT_EQ(find(role, name).description, hint) << name;
  };
  expectHint("push button", "Restore Auto", "Return all fans to firmware Auto");
  goTo("Fan Curves");
  expectHint("combo box", "Source sensor", "This fan follows this sensor.");
  goTo("Presets");
  expectHint("push button", "New from current",
             "Saves whatever your fans are doing right now as a new preset.");
  closeWindow();
  static_cast<void>(openPanel());
  expectHint("slider", "Fan 0 speed", "Sets a manual fan speed when released");
  expectHint("push button", "Restore Auto", "Restores every fan to automatic control");
  expectHint("push button", "Open Ventolith", "Opens the Ventolith dashboard window");
}

TEST_F(AccessibleWindow, ValuesAndStatesCanBeChanged) {
  start();
  enableHelper();
  tree.setValue(fanSlider("Fan 0"), 75);
  waitUntil("a fan that is held", [this] { return isFanHeld(0); });
  EXPECT_EQ(fanSlider("Fan 0").value.value().now, 75);
  tree.act(tree.find({.role = "push button", .name = "Auto", .description = "Fan 0"}), "Press");
  waitUntilFanIsBack(0);

  goTo("Fan Curves");
  const Accessible link = find("check box", "Link fans");
  EXPECT_FALSE(link.is("checked"));
  tree.act(link, "Toggle");
  EXPECT_TRUE(tree.find({.role = "check box", .name = "Link fans", .states = {"checked"}}).is("enabled"));
  const Accessible hysteresis = find("slider", "Hysteresis");
  tree.setValue(hysteresis, 3.5);
  EXPECT_EQ(tree.look(hysteresis).value.value().now, 3.5);
  const Accessible point = tree.find({.role = "slider", .begins = "Point 2 of "});
  tree.setValue(point, 65);
  EXPECT_EQ(tree.look(point).value.value().now, 65);
  waitUntilStored("all of that", "plan.json", [&](const json& plan) {
    return plan.at("tuning").at("hysteresisCelsius") == 3.5 && storedMode(1).contains("curve") &&
           storedMode(1)["curve"]["_0"]["points"].at(1).at("percent") == 65;
  });
}

TEST_F(AccessibleWindow, PickersTellWhatIsChosen) {
  start();
  goTo("Fan Curves");
  const Accessible fan = find("combo box", "Fan");
  EXPECT_EQ(fan.text, "Fan 0");
  EXPECT_EQ(find("combo box", "Source sensor").text, "Hottest");
  tree.act(fan, "ShowMenu");
  tree.act(find("menu item", "Fan 1"), "Press");
  waitUntil("the other fan", [&] { return tree.look(fan).text == "Fan 1"; });
}

TEST_F(AccessibleWindow, RulesCanBeChanged) {
  start();
  goTo("Rules");
  tree.act(find("push button", "Create your first rule"), "Press");
  const Accessible threshold = find("spin button", "Threshold");
  tree.act(threshold, "Increase");
  EXPECT_EQ(tree.look(threshold).value.value().now, threshold.value.value().now + 1);
  tree.setValue(find("spin button", "Fan speed"), 95);
  const Accessible enabled = find("check box", "Enabled");
  EXPECT_TRUE(enabled.is("checked"));
  tree.act(enabled, "Toggle");
  EXPECT_FALSE(tree.look(enabled).is("checked"));
  waitUntilStored("all of that", "plan.json", [&](const json& plan) {
    const json& rules = plan.at("rules");
    return rules.size() == 1 && rules[0].at("thresholdCelsius") == threshold.value.value().now + 1 &&
           rules[0].at("targetPercent") == 95 && rules[0].at("enabled") == false;
  });
}

TEST_F(AccessibleWindow, MenusOpenAndTheirRowsAreFoundAndChosen) {
  start();
  enableHelper();
  const Accessible presets =
      tree.find({.role = "push button", .name = "Automatic", .description = "Presets"});
  EXPECT_TRUE(presets.is("collapsed"));
  tree.act(presets, "ShowMenu");
  const Accessible row = find("menu item", "Balanced");
  EXPECT_TRUE(tree.look(presets).is("expanded"));
  tree.act(row, "Press");
  static_cast<void>(tree.find({.role = "push button", .name = "Balanced", .description = "Presets"}));
  tree.waitUntilGone({.role = "menu item", .name = "Balanced"});
}

} // namespace

} // namespace ventolith::e2e
