// A curve editor over a model that keeps a log, and the user's hand on its chart.
#pragma once

#include "support/Plans.h"
#include "ui/state/CurveEditing.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

namespace ventolith::ui {

using Log = std::vector<std::string>;

struct RecordingCurveModel final : CurveEditingModel {
  core::SensorSnapshot reading = support::snapshot({support::fan(0)});
  core::FanControlPlan plan;
  Log log;
  core::FanCurve sentCurve;
  core::ControlTuning sentTuning;

  const core::SensorSnapshot& snapshot() const override { return reading; }
  const core::FanControlPlan& activePlan() const override { return plan; }
  std::optional<core::FanCurve> curve(core::FanID fan) const override {
    for (const core::FanPlan& entry : plan.fans) {
      const auto* const curve = std::get_if<core::FanControlModePlan::Curve>(&entry.mode.value);
      if (entry.fanID == fan && curve != nullptr) return curve->curve;
    }
    return std::nullopt;
  }
  void setFanCurve(const core::FanCurve& curve, const std::vector<core::FanID>& fanIDs) override {
    std::string line = "curve for";
    for (const core::FanID id : fanIDs)
      line += " " + std::to_string(id);
    log.push_back(line);
    sentCurve = curve;
  }
  void setTuning(const core::ControlTuning& tuning) override {
    log.emplace_back("tuning");
    sentTuning = tuning;
  }
  void newPresetFromCurrent(const std::string& name) override { log.push_back("preset \"" + name + "\""); }
};

class CurveEditingFixture : public testing::Test {
protected:
  RecordingCurveModel model;
  CurveEditing editing{model};
  // 10 pixels a degree and 4 a percent.
  const ChartGeometry chart{.plot = QRectF(50, 30, 750, 400)};

  std::vector<std::pair<double, double>> values() const {
    std::vector<std::pair<double, double>> pairs;
    for (const core::CurvePoint& point : editing.editingCurve().points)
      pairs.emplace_back(point.celsius, point.percent);
    return pairs;
  }

  bool dragTo(double celsius, double percent) {
    return editing.handleDrag(chart.position({.celsius = celsius, .percent = percent}), chart);
  }
  bool dragFrom(double celsius, double percent) { return dragTo(celsius, percent); }
  void select(double celsius, double percent) {
    dragFrom(celsius, percent);
    editing.endDrag();
  }
};

} // namespace ventolith::ui
