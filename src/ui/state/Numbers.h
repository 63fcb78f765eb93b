// Numbers as the screens show them. No number is too large, and what is not a number is shown, not feared.
#pragma once

#include <QString>

#include <cstdint>
#include <string_view>

namespace ventolith::ui {

/// To the nearest whole number, halves away from zero. What lies beyond the whole numbers gives the last of
/// them on that side, what is not a number gives 0.
[[nodiscard]] std::int64_t rounded(double value);
/// Cut toward zero; otherwise as `rounded`.
[[nodiscard]] std::int64_t cut(double value);

[[nodiscard]] QString wholeText(std::int64_t value);
[[nodiscard]] QString roundedText(double value);
[[nodiscard]] QString cutText(double value);
/// As the format "%.<decimals>f" writes it, with a point in every language.
[[nodiscard]] QString fixedText(double value, int decimals);

/// A text of the core, which is UTF-8.
[[nodiscard]] QString utf8Text(std::string_view utf8);

} // namespace ventolith::ui
