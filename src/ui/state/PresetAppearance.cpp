#include "ui/state/PresetAppearance.h"

#include "app/PresetLibrary.h"
#include "ui/state/CurveShaping.h"

#include <QCoreApplication>

#include <cmath>
#include <numeric>

namespace ventolith::ui {

namespace {

class Presets {
  Q_DECLARE_TR_FUNCTIONS(Presets)
};

constexpr double ownSaturation = 0.55;
constexpr double ownBrightness = 0.8;

constexpr core::Color sRGB(int r, int g, int b) {
  return {.r = r / 255.0, .g = g / 255.0, .b = b / 255.0};
}

/// How much of one component a hue has: `sixths` is the hue's distance from where the component begins.
double component(double sixths, double saturation, double brightness) {
  const double turn = std::fmod(sixths, 6.0);
  const double missing = std::fmax(0.0, std::fmin(std::fmin(turn, 4.0 - turn), 1.0));
  return brightness * (1 - saturation * missing);
}

core::Color ownColor(const core::UUID& id) {
  const int sum = std::accumulate(id.begin(), id.end(), 0);
  return colorOfHue((sum % 360) / 360.0, ownSaturation, ownBrightness);
}

} // namespace

core::Color colorOfHue(double hue, double saturation, double brightness) {
  const double sixths = hue * 6;
  return {.r = component(sixths + 5, saturation, brightness),
          .g = component(sixths + 3, saturation, brightness),
          .b = component(sixths + 1, saturation, brightness)};
}

core::Color presetDotColor(const core::UUID& id, core::ColorScheme scheme) {
  const bool isDark = scheme == core::ColorScheme::dark;
  if (id == app::PresetLibrary::quietID) return isDark ? sRGB(64, 156, 255) : sRGB(10, 132, 255);
  if (id == app::PresetLibrary::balancedID) return isDark ? sRGB(48, 209, 88) : sRGB(52, 199, 89);
  if (id == app::PresetLibrary::maxID) return isDark ? sRGB(255, 69, 58) : sRGB(255, 59, 48);
  return ownColor(id);
}

QString presetCaption(const core::UUID& id) {
  if (id == app::PresetLibrary::quietID) return Presets::tr("Whisper-quiet");
  if (id == app::PresetLibrary::balancedID) return Presets::tr("Everyday balance");
  if (id == app::PresetLibrary::maxID) return Presets::tr("Maximum cooling");
  return Presets::tr("Custom");
}

PresetThumbnail presetThumbnail(const core::FanPreset& preset) {
  using Kind = PresetThumbnail::Kind;
  if (preset.plan.fans.empty()) return {.kind = Kind::noFans, .text = Presets::tr("No fans configured")};
  const auto& mode = preset.plan.fans.front().mode.value;
  const auto* const planned = std::get_if<core::FanControlModePlan::Curve>(&mode);
  if (planned == nullptr) {
    return {.kind = Kind::manual,
            .text = Presets::tr("Manual"),
            .symbol = QStringLiteral("hand.point.up.left.fill")};
  }
  return {.kind = Kind::curve, .samples = samples(planned->curve, thumbnailTemperatures, thumbnailStep)};
}

} // namespace ventolith::ui
