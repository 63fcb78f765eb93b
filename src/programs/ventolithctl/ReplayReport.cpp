#include "programs/ventolithctl/ReplayReport.h"

#include "core/Visitor.h"
#include "programs/ventolithctl/TextLayout.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <cmath>

namespace ventolith::ctl {

namespace {

using core::Fan;
using core::FanDecision;
using core::FanID;

constexpr int timeColumns = 11;
constexpr int temperatureColumns = 9;
constexpr int fanColumns = 20;
constexpr int labelColumns = 14;
constexpr int temperatureRows = 4;
constexpr int fanRows = 2;
constexpr double coldEnd = 30; // Of the temperature chart.
constexpr double hotEnd = 100;
constexpr double notableRangePart = 0.1; // A target that moved by this part of its fan's range gets a row.

const FanDecision* find(const core::FanDecisions& decisions, FanID fan) {
  const auto found = decisions.find(fan);
  return found == decisions.end() ? nullptr : &found->second;
}

std::string decisionText(const FanDecision* decision) {
  if (decision == nullptr) return "-";
  return std::visit(
      core::Visitor{
          [](const FanDecision::Target& target) { return fmt::format("{:.0f} RPM", target.rpm); },
          [](const FanDecision::ReleaseToAuto&) { return std::string("firmware"); },
          [](const FanDecision::IdleStopped&) { return std::string("stopped"); },
      },
      decision->value);
}

bool isNotable(const Fan& fan, const FanDecision* before, const FanDecision* now) {
  if ((before == nullptr) != (now == nullptr)) return true;
  if (now == nullptr) return false;
  if (before->value.index() != now->value.index()) return true;
  const auto* target = std::get_if<FanDecision::Target>(&now->value);
  if (target == nullptr) return false;
  const double moved = std::abs(target->rpm - std::get<FanDecision::Target>(before->value).rpm);
  return moved > 0 && moved >= notableRangePart * static_cast<double>(fan.maxRPM - fan.minRPM);
}

std::optional<double> targetOf(const core::FanHoldActions& actions, FanID fan) {
  const auto target = actions.targets.find(fan);
  return target == actions.targets.end() ? std::nullopt : std::optional(target->second);
}

std::string temperatureLabel(std::size_t row) {
  if (row == 0) return "Hottest";
  return row + 1 == temperatureRows ? fmt::format("{} to {} °C", coldEnd, hotEnd) : "";
}

std::string listed(std::string_view verb, const std::vector<FanID>& fans) {
  return fans.empty() ? "" : fmt::format("  {} {}", verb, fmt::join(fans, ", "));
}

} // namespace

void ReplayReport::add(const TraceTick& tick, const ReplayTick& result) {
  if (ticks_ == 0) firstSeconds_ = tick.seconds;
  lastSeconds_ = tick.seconds;
  follow(tick, result);
  lastRow_ = row(tick, result);
  ++ticksSinceRow_;
  if (ticks_++ != 0 && !isWorthARow(tick, result)) return;
  out_.write(lastRow_);
  shown_ = result;
  ticksSinceRow_ = 0;
}

bool ReplayReport::isWorthARow(const TraceTick& tick, const ReplayTick& result) const {
  if (every_ != 0 && ticksSinceRow_ >= every_) return true;
  if (tick.plan || tick.reset || !result.actions.toClaim.empty() || !result.actions.toRelease.empty())
    return true;
  return std::any_of(tick.snapshot.fans.begin(), tick.snapshot.fans.end(), [&](const Fan& fan) {
    return isNotable(fan, find(shown_.decisions, fan.id), find(result.decisions, fan.id));
  });
}

std::string ReplayReport::row(const TraceTick& tick, const ReplayTick& result) const {
  const core::TempSensor* hottest = tick.snapshot.hottest();
  const std::string celsius =
      rightIn(temperatureColumns, hottest == nullptr ? "-" : celsiusText(hottest->celsius));
  std::string text = rightIn(timeColumns, fmt::format("{:.1f} s", tick.seconds)) + "  ";
  text += hottest == nullptr ? celsius : inColorOf(hottest->celsius, out_.colors(), celsius);
  for (const Fan& fan : tick.snapshot.fans) {
    text +=
        "  " + leftIn(fanColumns, printable(fan.name) + " " + decisionText(find(result.decisions, fan.id)));
  }
  text += listed("claims", result.actions.toClaim) + listed("releases", result.actions.toRelease);
  if (tick.plan) text += "  new plan";
  if (tick.reset) text += "  reset";
  return withoutTrailingSpaces(std::move(text)) + "\n";
}

void ReplayReport::follow(const TraceTick& tick, const ReplayTick& result) {
  const core::TempSensor* hottest = tick.snapshot.hottest();
  hottest_.add(hottest == nullptr ? std::nullopt : std::optional(hottest->celsius));
  for (const Fan& fan : tick.snapshot.fans) {
    FanCourse& course = fans_[fan.id];
    course.name = fan.name;
    course.minRPM = static_cast<double>(fan.minRPM);
    course.maxRPM = static_cast<double>(fan.maxRPM);
    // A fan that was not there before, or not for a while, has no target for so long.
    while (course.targets.size() < ticks_)
      course.targets.add(std::nullopt);
    course.targets.add(targetOf(result.actions, fan.id));
  }
}

void ReplayReport::finish() {
  if (ticks_ == 0) {
    out_.write("The trace is empty.\n");
    return;
  }
  if (ticksSinceRow_ != 0) out_.write(lastRow_);
  out_.write("\n");
  drawTemperature();
  for (auto& [id, fan] : fans_) {
    while (fan.targets.size() < ticks_)
      fan.targets.add(std::nullopt);
    drawFan(fan);
  }
  const std::string from = fmt::format("{:.1f} s", firstSeconds_);
  const int rest = static_cast<int>(hottest_.cells(chartColumns()).size()) - columnsOf(from);
  const std::string indent(labelColumns, ' ');
  out_.write(indent + from + rightIn(std::max(rest, 12), fmt::format("{:.1f} s", lastSeconds_)) + "\n");
}

std::size_t ReplayReport::chartColumns() const {
  return static_cast<std::size_t>(std::max(out_.size().columns - labelColumns, 20));
}

void ReplayReport::drawTemperature() const {
  const auto cells = hottest_.cells(chartColumns());
  const auto lines = drawColumns(cells, coldEnd, hotEnd, temperatureRows);
  for (std::size_t row = 0; row < lines.size(); ++row) {
    std::string line = leftIn(labelColumns, temperatureLabel(row));
    for (std::size_t cell = 0; cell < cells.size(); ++cell) {
      const bool isEmpty = !cells[cell] || lines[row][cell] == " ";
      line += isEmpty ? " " : inColorOf(*cells[cell], out_.colors(), lines[row][cell]);
    }
    out_.write(withoutTrailingSpaces(std::move(line)) + "\n");
  }
}

void ReplayReport::drawFan(const FanCourse& fan) const {
  const auto lines = drawColumns(fan.targets.cells(chartColumns()), fan.minRPM, fan.maxRPM, fanRows);
  for (std::size_t row = 0; row < lines.size(); ++row) {
    const std::string label = row == 0 ? printable(fan.name) : fmt::format("to {:.0f}", fan.maxRPM);
    const std::string line = leftIn(labelColumns, label) + fmt::format("{}", fmt::join(lines[row], ""));
    out_.write(withoutTrailingSpaces(line) + "\n");
  }
}

} // namespace ventolith::ctl
