// What a user does on the first evening with the application, from the first click to the last.
#include "e2e/MockUPower.h"
#include "e2e/window/RunningWindow.h"

#include <algorithm>
#include <cmath>

namespace ventolith::e2e {

using nlohmann::json;

namespace {

class WholeRoad : public RunningWindow {
protected:
  [[nodiscard]] double rpmAt(int fan, double fraction) const {
    const json simulated = simulatedFan(fan);
    const double least = simulated.at("minRPM").get<double>();
    return least + fraction * (simulated.at("maxRPM").get<double>() - least);
  }
  [[nodiscard]] std::vector<Accessible> curvePoints() { return tree.children(find("chart", chartName)); }

  /// What the screen says that the fan is to do now, as a part of its range.
  [[nodiscard]] double liveFraction() {
    const Accessible line = tree.find({.role = "label", .begins = "Live:"});
    const auto arrow = line.name.find("→ ");
    return std::stod(line.name.substr(arrow + std::string("→ ").size())) / 100;
  }
  /// The top bar's menu says so.
  void waitUntilActive(const std::string& preset) {
    static_cast<void>(tree.find({.role = "push button", .name = preset, .description = "Presets"}));
  }
  void chooseInMenu(const std::string& picker, const std::string& row) {
    click("combo box", picker);
    click("menu item", row);
  }

  void dragAFan();
  void drawACurve();
  void saveItAsPreset(const std::string& name);
  void addARule();
  void switchByPowerSource(const std::string& onBattery, const std::string& onMains);

  static constexpr const char* chartName = "Temperature to speed curve";
};

void WholeRoad::dragAFan() {
  dragSlider(fanSlider("Fan 0"), 0.5);
  waitUntil("a slider in its middle",
            [this] { return std::abs(fanSlider("Fan 0").value.value().now - 50) <= 1; });
  waitUntilFanRunsAt(0, rpmAt(0, 0.5));
  EXPECT_TRUE(storedMode(0).contains("fixedRPM"));
}

void WholeRoad::drawACurve() {
  goTo("Fan Curves");
  const std::size_t before = curvePoints().size();
  click("push button", "Add Point");
  waitUntil("one more point", [&] { return curvePoints().size() == before + 1; });

  const Accessible point = curvePoints().at(1);
  const Point place = point.box.centre();
  hands.drag({place, place.movedBy(0, -40), place.movedBy(0, -80)});
  waitUntil("a point that is higher",
            [&] { return tree.look(point).value.value().now > point.value.value().now + 5; });
  const double drawn = tree.look(point).value.value().now;
  waitUntilStored("a curve with that point", "plan.json", [&](const json&) {
    const json mode = storedMode(0);
    return mode.contains("curve") &&
           std::abs(mode["curve"]["_0"]["points"].at(1).at("percent").get<double>() - drawn) < 0.51;
  });
  waitUntil("a fan that follows the curve", [this] {
    return std::abs(simulatedFan(0).at("currentRPM").get<double>() - rpmAt(0, liveFraction())) < 150;
  });
}

void WholeRoad::saveItAsPreset(const std::string& name) {
  click("push button", "Save as Preset…");
  static_cast<void>(tree.find({.role = "text", .name = "Name", .states = {"focused"}}));
  hands.type(name); // In the place of the name that was proposed.
  click("push button", "Save");
  waitUntilStored(name, "presets.json", [&](const json& presets) {
    return std::ranges::any_of(presets, [&](const json& preset) { return preset.at("name") == name; });
  });
}

void WholeRoad::addARule() {
  goTo("Rules");
  click("push button", "Create your first rule");
  waitUntilStored("a rule", "plan.json", [](const json& plan) { return plan.at("rules").size() == 1; });
}

void WholeRoad::switchByPowerSource(const std::string& onBattery, const std::string& onMains) {
  goTo("Presets");
  click("check box", "Switch presets automatically on power source");
  chooseInMenu("On battery →", onBattery);
  chooseInMenu("On AC power →", onMains);
}

TEST_F(WholeRoad, LeadsFromTheFirstClickToTheFirmware) {
  const auto upower = startUPowerOn(house.bus(), R"({"OnBattery": false})");
  const auto setOnBattery = [&](bool isOnBattery) {
    upower->control("UpdateProperties", upowerObject.interface,
                    Properties{{"OnBattery", sdbus::Variant(isOnBattery)}});
  };
  start();
  enableHelper();
  dragAFan();
  drawACurve();
  saveItAsPreset("Evening");
  addARule();
  switchByPowerSource("Quiet", "Evening");
  waitUntilActive("Evening");
  setOnBattery(true);
  waitUntilActive("Quiet");
  setOnBattery(false);
  waitUntilActive("Evening");

  hands.press({"ctrl+q"});
  EXPECT_EQ(application->wait().status, 0);
  waitUntilFanIsBack(0);
  EXPECT_TRUE(storedMode(0).contains("curve"));
  EXPECT_TRUE(stored("autoswitch.json").at("enabled").get<bool>());
}

} // namespace

} // namespace ventolith::e2e
