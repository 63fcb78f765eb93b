#include "programs/ventolithctl/TextLayout.h"

#include "core/TemperatureScale.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>

namespace ventolith::ctl {

namespace {

constexpr std::array<std::string_view, 8> eighths = {"", "▏", "▎", "▍", "▌", "▋", "▊", "▉"};

bool isContinuation(char byte) {
  return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U;
}

/// The first `columns` characters of `text`.
std::string_view prefix(std::string_view text, int columns) {
  std::size_t end = 0;
  while (end < text.size()) {
    if (!isContinuation(text[end]) && columns-- == 0) break;
    ++end;
  }
  return text.substr(0, end);
}

std::string spaces(int count) {
  return std::string(static_cast<std::size_t>(std::max(count, 0)), ' ');
}

/// `text`, cut if it is too wide.
std::string cut(int columns, std::string_view text) {
  if (columns <= 0) return {};
  if (columnsOf(text) <= columns) return std::string(text);
  return std::string(prefix(text, columns - 1)).append("…");
}

/// Of the sixteen colours of every terminal, the nearest to the scale; 33 is often orange.
int basicColor(core::TemperatureBand band) {
  switch (band) {
  case core::TemperatureBand::cool: return 94;
  case core::TemperatureBand::mild: return 92;
  case core::TemperatureBand::warm: return 93;
  case core::TemperatureBand::hot: return 33;
  case core::TemperatureBand::critical: break;
  }
  return 91;
}

int byteOf(double component) {
  return static_cast<int>(std::lround(component * 255));
}

} // namespace

int columnsOf(std::string_view text) {
  return static_cast<int>(
      std::count_if(text.begin(), text.end(), [](char byte) { return !isContinuation(byte); }));
}

std::string printable(std::string_view text) {
  std::string shown;
  for (std::size_t place = 0; place < text.size(); ++place) {
    const auto byte = static_cast<unsigned char>(text[place]);
    const bool isC1 =
        byte == 0xC2 && place + 1 < text.size() && static_cast<unsigned char>(text[place + 1]) < 0xA0;
    if (isC1) ++place;
    shown += isC1 || byte < 0x20 || byte == 0x7F ? '?' : text[place];
  }
  return shown;
}

std::string leftIn(int columns, std::string_view text) {
  const std::string shown = cut(columns, text);
  return shown + spaces(columns - columnsOf(shown));
}

std::string rightIn(int columns, std::string_view text) {
  const std::string shown = cut(columns, text);
  return spaces(columns - columnsOf(shown)) + shown;
}

std::string withoutTrailingSpaces(std::string text) {
  text.erase(text.find_last_not_of(' ') + 1);
  return text;
}

std::string bar(double fraction, int columns) {
  const double clamped = fraction > 0 ? std::min(fraction, 1.0) : 0; // What is not a number is empty.
  const auto filled = static_cast<int>(std::lround(clamped * columns * 8));
  std::string text;
  for (int column = 0; column < columns; ++column) {
    const int left = std::clamp(filled - column * 8, 0, 8);
    if (left == 8)
      text += "█";
    else if (left == 0)
      text += "·";
    else
      text += eighths[static_cast<std::size_t>(left)];
  }
  return text;
}

std::string inColorOf(double celsius, ColorDepth colors, std::string_view text) {
  switch (colors) {
  case ColorDepth::none: break;
  case ColorDepth::sixteen:
    return fmt::format("\x1b[{}m{}\x1b[0m", basicColor(core::TemperatureScale::band(celsius)), text);
  case ColorDepth::trueColor: {
    const core::Color color = core::TemperatureScale::color(celsius, core::ColorScheme::dark);
    return fmt::format("\x1b[38;2;{};{};{}m{}\x1b[0m", byteOf(color.r), byteOf(color.g), byteOf(color.b),
                       text);
  }
  }
  return std::string(text);
}

std::string celsiusText(double celsius) {
  return fmt::format("{:.1f} °C", celsius);
}

} // namespace ventolith::ctl
