#include "ui/kit/Palette.h"

#include <algorithm>
#include <cmath>

namespace ventolith::ui {
namespace {

// WCAG 2.1: text, and graphics that carry meaning.
constexpr double readable = 4.5;
constexpr double visible = 3.0;

QColor rgb(QRgb value) {
  return QColor::fromRgb(value);
}
QColor black(double opacity) {
  return QColor::fromRgbF(0.0F, 0.0F, 0.0F, static_cast<float>(opacity));
}

Palette lightPalette() {
  Palette it;
  it.appearance = Appearance::light;
  it.windowBackground = it.toolbarBackground = rgb(0xF5F6F8);
  it.sidebarBackground = rgb(0xEAECF0);
  it.cardBackground = rgb(0xFFFFFF);
  it.tileBackground = rgb(0xFAFBFC);
  it.controlBackground = rgb(0xECEEF2);
  it.buttonBackground = rgb(0xFFFFFF);
  it.panelBackground = rgb(0xFAFBFC);
  it.menuBackground = rgb(0xFFFFFF);
  it.thumbBackground = rgb(0xF3F5F8);
  it.cardStroke = rgb(0xDDE1E7);
  it.tileStroke = rgb(0xE3E6EB);
  it.buttonStroke = rgb(0xCBD1DA);
  it.separator = rgb(0xE2E5EA);
  it.menuStroke = rgb(0xD3D7DE);
  it.primaryText = rgb(0x181B21);
  it.secondaryText = rgb(0x565D6A);
  it.tertiaryText = rgb(0x666D7A);
  it.accent = rgb(0x0953BE);
  it.accentFill = rgb(0x0F62DA);
  it.onAccent = rgb(0xFFFFFF);
  it.accentGraphic = rgb(0x0F62DA);
  it.success = rgb(0x34C759);
  it.successText = rgb(0x1A7A37);
  it.warning = rgb(0xA84E00);
  it.warningFill = rgb(0xFFF3E2);
  it.warningStroke = rgb(0xF0BF80);
  it.danger = rgb(0xC4261B);
  it.dangerFill = rgb(0xFCEAE8);
  it.dangerStroke = rgb(0xF0B9B4);
  it.neutralFill = rgb(0xEDEFF3);
  it.neutralStroke = rgb(0xD7DBE2);
  it.trackBackground = rgb(0xDADEE5);
  it.knob = rgb(0xFFFFFF);
  it.knobStroke = rgb(0xC3C9D3);
  it.switchOff = rgb(0xB9C0CB);
  it.chartLine = rgb(0x0953BE);
  it.chartGrid = rgb(0xE9EBEF);
  it.chartAxis = rgb(0xC9CED7);
  it.safetyLine = rgb(0xD92F23);
  it.menuShadow = black(0.16);
  return it;
}

Palette darkPalette() {
  Palette it;
  it.appearance = Appearance::dark;
  it.windowBackground = it.toolbarBackground = rgb(0x191B1F);
  it.sidebarBackground = rgb(0x22252A);
  it.cardBackground = rgb(0x23262B);
  it.tileBackground = rgb(0x282C32);
  it.controlBackground = rgb(0x3A404A);
  it.buttonBackground = rgb(0x323740);
  it.panelBackground = rgb(0x23262B);
  it.menuBackground = rgb(0x2A2E34);
  it.thumbBackground = rgb(0x2C3037);
  it.cardStroke = rgb(0x353A42);
  it.tileStroke = rgb(0x3A404A);
  it.buttonStroke = rgb(0x4A515C);
  it.separator = rgb(0x353A42);
  it.menuStroke = rgb(0x434A55);
  it.primaryText = rgb(0xF1F3F6);
  it.secondaryText = rgb(0xAEB5C1);
  it.tertiaryText = rgb(0x9AA2AF);
  it.accent = rgb(0x86C0FF);
  it.accentFill = rgb(0x1D6CE0);
  it.onAccent = rgb(0xFFFFFF);
  it.accentGraphic = rgb(0x4792F7);
  it.success = rgb(0x30D158);
  it.successText = rgb(0x4BDB72);
  it.warning = rgb(0xFFB758);
  it.warningFill = rgb(0x33291A);
  it.warningStroke = rgb(0x6A5029);
  it.danger = rgb(0xFF7A70);
  it.dangerFill = rgb(0x3A2221);
  it.dangerStroke = rgb(0x6E3733);
  it.neutralFill = rgb(0x262A30);
  it.neutralStroke = rgb(0x3C424C);
  it.trackBackground = rgb(0x474E59);
  it.knob = rgb(0xE9ECF1);
  it.knobStroke = rgb(0x15171A);
  it.switchOff = rgb(0x59616D);
  it.chartLine = rgb(0x6FB3FF);
  it.chartGrid = rgb(0x30353D);
  it.chartAxis = rgb(0x4A515C);
  it.safetyLine = rgb(0xFF6259);
  it.menuShadow = black(0.50);
  return it;
}

void deriveSeeThrough(Palette& it) {
  it.accentFaint = faded(it.accent, 0.12);
  it.sidebarSelection = faded(it.accent, 0.14);
  it.accentActive = faded(it.accent, 0.18);
  it.accentSoft = faded(it.accent, 0.22);
  it.focusRing = faded(it.accent, 0.50);
  it.sensorRowFill = faded(it.controlBackground, 0.50);
  it.newCardStroke = faded(it.secondaryText, 0.40);
  it.cardShadow = black(0.08);
  it.knobShadow = black(0.16);
}

// Text in `accent` lies on these, and on its own soft tint over each of them.
bool readableAsAccent(const Palette& it, const QColor& accent) {
  const QColor grounds[] = {it.windowBackground, it.sidebarBackground, it.cardBackground,
                            it.tileBackground,   it.panelBackground,   it.menuBackground};
  return std::all_of(std::begin(grounds), std::end(grounds), [&](const QColor& ground) {
    return contrast(accent, ground) >= readable &&
           contrast(accent, composed(ground, faded(accent, 0.22))) >= readable;
  });
}

// The first of `color`'s lighter (darker) shades that `holds`; hue and saturation stay.
template <class Condition>
QColor shaded(const QColor& color, double step, Condition holds) {
  float hue = 0, saturation = 0, lightness = 0;
  color.getHslF(&hue, &saturation, &lightness);
  for (double shade = lightness; shade >= 0 && shade <= 1; shade += step) {
    const QColor candidate = QColor::fromHslF(std::max(hue, 0.0F), saturation, static_cast<float>(shade));
    if (holds(candidate)) return candidate;
  }
  return step > 0 ? QColor(Qt::white) : QColor(Qt::black);
}

void applyAccent(Palette& it, QColor given) {
  given.setAlpha(255);
  const double away = it.appearance == Appearance::light ? -0.01 : 0.01;
  it.accent = shaded(given, away, [&](const QColor& color) { return readableAsAccent(it, color); });
  it.chartLine = it.accent;
  it.accentFill =
      shaded(given, -0.01, [&](const QColor& color) { return contrast(color, it.onAccent) >= readable; });
  it.accentGraphic = shaded(given, away, [&](const QColor& color) {
    return contrast(color, it.tileBackground) >= visible && contrast(color, it.cardBackground) >= visible &&
           contrast(color, it.panelBackground) >= visible;
  });
}

} // namespace

Palette Palette::of(Appearance appearance) {
  return of(appearance, std::nullopt);
}

Palette Palette::of(Appearance appearance, std::optional<QColor> accent) {
  Palette it = appearance == Appearance::light ? lightPalette() : darkPalette();
  if (accent && accent->isValid()) applyAccent(it, *accent);
  deriveSeeThrough(it);
  return it;
}

QColor mixed(const QColor& base, const QColor& over, double fraction) {
  const auto part = [fraction](float below, float above) {
    return std::clamp(below + (above - below) * static_cast<float>(fraction), 0.0F, 1.0F);
  };
  return QColor::fromRgbF(part(base.redF(), over.redF()), part(base.greenF(), over.greenF()),
                          part(base.blueF(), over.blueF()), base.alphaF());
}

QColor composed(const QColor& base, const QColor& over) {
  return mixed(base, over, static_cast<double>(over.alphaF()));
}

QColor faded(const QColor& color, double fraction) {
  QColor result = color;
  result.setAlphaF(color.alphaF() * static_cast<float>(std::clamp(fraction, 0.0, 1.0)));
  return result;
}

double contrast(const QColor& one, const QColor& other) {
  const auto linear = [](float channel) {
    const double value = channel;
    return value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
  };
  const auto luminance = [&](const QColor& color) {
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) + 0.0722 * linear(color.blueF());
  };
  const auto [darker, lighter] = std::minmax({luminance(one), luminance(other)});
  return (lighter + 0.05) / (darker + 0.05);
}

} // namespace ventolith::ui
