#include "ui/state/SpeedRange.h"

#include "ui/state/Numbers.h"

#include <algorithm>

namespace ventolith::ui {

double SpeedRange::fraction(double rpm) const {
  const double span = upper - lower;
  if (!(span > 0)) return 0; // So large a speed that one more is no other number.
  const double travelled = (rpm - lower) / span;
  return travelled > 0 ? std::min(travelled, 1.0) : 0;
}

std::int64_t SpeedRange::percent(double rpm) const {
  return rounded(fraction(rpm) * 100);
}

SpeedRange speedRange(const core::Fan& fan) {
  const auto lower = static_cast<double>(fan.minRPM);
  return {.lower = lower, .upper = std::max(lower + 1, static_cast<double>(fan.maxRPM))};
}

QString percentText(std::int64_t percent) {
  return wholeText(percent) + QLatin1Char('%');
}

} // namespace ventolith::ui
