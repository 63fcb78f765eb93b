#include "ui/state/Numbers.h"

#include <fmt/format.h>

#include <cmath>
#include <limits>

namespace ventolith::ui {

namespace {

std::int64_t whole(double value) {
  constexpr double beyond = 9223372036854775808.0; // 2 to the 63.
  if (std::isnan(value)) return 0;
  if (value >= beyond) return std::numeric_limits<std::int64_t>::max();
  if (value < -beyond) return std::numeric_limits<std::int64_t>::min();
  return static_cast<std::int64_t>(value);
}

} // namespace

std::int64_t rounded(double value) {
  return whole(std::round(value));
}

std::int64_t cut(double value) {
  return whole(value);
}

QString wholeText(std::int64_t value) {
  return QString::number(value);
}

QString roundedText(double value) {
  return wholeText(rounded(value));
}

QString cutText(double value) {
  return wholeText(cut(value));
}

QString fixedText(double value, int decimals) {
  return utf8Text(fmt::format("{:.{}f}", value, decimals));
}

QString utf8Text(std::string_view utf8) {
  return QString::fromUtf8(utf8.data(), static_cast<qsizetype>(utf8.size()));
}

} // namespace ventolith::ui
