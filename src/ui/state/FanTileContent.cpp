#include "ui/state/FanTileContent.h"

#include "ui/state/Numbers.h"

#include <QCoreApplication>

namespace ventolith::ui {

namespace {

class FanTile {
  Q_DECLARE_TR_FUNCTIONS(FanTile)
};

QString curveStatus(const FanTileState& state) {
  if (state.isStopped) return FanTile::tr("Curve · fan stopped (0%)");
  if (state.activePresetName) return FanTile::tr("Curve · %1").arg(utf8Text(*state.activePresetName));
  return FanTile::tr("Curve");
}

QString statusLine(const FanTileState& state) {
  switch (state.mode) {
  case core::ControlMode::automatic: return FanTile::tr("Automatic — firmware controlled");
  case core::ControlMode::curve: return curveStatus(state);
  case core::ControlMode::fullBlast:
  case core::ControlMode::manual: break;
  }
  return FanTile::tr("Target: %1 rpm").arg(roundedText(state.sliderValue));
}

} // namespace

FanTileContent fanTileContent(const FanTileState& state) {
  const core::Fan& fan = state.fan;
  const SpeedRange range = speedRange(fan);
  return {
      .name = utf8Text(fan.name),
      .badge = modeBadge(state.mode),
      .gauge = range.fraction(static_cast<double>(fan.currentRPM)),
      .speed = wholeText(fan.currentRPM),
      .rangeText = FanTile::tr("%1–%2 rpm range").arg(wholeText(fan.minRPM), wholeText(fan.maxRPM)),
      .statusLine = statusLine(state),
      .controlTitle = state.canControlFans ? FanTile::tr("Manual control")
                                           : FanTile::tr("Manual control (helper required)"),
      .percentage = percentText(range.percent(state.sliderValue)),
      .sliderRange = range,
      .sliderValue = state.sliderValue,
      .isSliderEnabled = state.canControlFans && state.mode != core::ControlMode::curve,
      .isFullBlastEnabled = state.canControlFans,
  };
}

FanTileTexts fanTileTexts() {
  return {.speedUnit = FanTile::tr("rpm"),
          .fullBlast = FanTile::tr("Full Blast"),
          .automatic = FanTile::tr("Auto")};
}

} // namespace ventolith::ui
