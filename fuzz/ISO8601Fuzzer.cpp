// Any text as a date: refused, or a date within a day of the years 0000 to 9999, which reads the same when it
// is written in the plainest form.
#include "app/platform-kit/ISO8601.h"

#include <fmt/format.h>

#include <cstdlib>

using namespace ventolith;

namespace {

std::string plainest(app::DocumentDate date) {
  const auto midnight = std::chrono::floor<std::chrono::days>(date);
  const std::chrono::year_month_day day(midnight);
  const std::chrono::hh_mm_ss time(date - midnight);
  return fmt::format("{:04}-{:02}-{:02}T{:02}:{:02}:{:02}.{:06}Z", static_cast<int>(day.year()),
                     static_cast<unsigned>(day.month()), static_cast<unsigned>(day.day()),
                     time.hours().count(), time.minutes().count(), time.seconds().count(),
                     time.subseconds().count());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const auto date = app::dateFromISO8601({reinterpret_cast<const char*>(data), size});
  if (!date) return 0;
  if (size < 20) std::abort(); // The shortest form has that many characters.
  const int year =
      static_cast<int>(std::chrono::year_month_day(std::chrono::floor<std::chrono::days>(*date)).year());
  if (year < -1 || year > 10000) std::abort(); // An offset may lead out of the years.
  if (year < 0 || year > 9999) return 0;
  if (app::dateFromISO8601(plainest(*date)) != date) std::abort();
  return 0;
}
