#include "app/platform-kit/ISO8601.h"

namespace ventolith::app {

namespace {

/// Takes a text apart from its start. What is not there fails once and for all, and reads as zero.
class Scanner {
public:
  explicit Scanner(std::string_view text) : rest_(text) {}

  bool skip(char character) {
    if (rest_.empty() || rest_.front() != character) return false;
    rest_.remove_prefix(1);
    return true;
  }

  void expect(char character) { failed_ |= !skip(character); }

  /// A number of exactly so many digits, and at most `highest`.
  int number(int digits, int highest) {
    int value = 0;
    for (int count = 0; count < digits; ++count)
      value = value * 10 + digit();
    failed_ |= value > highest;
    return value;
  }

  /// The microseconds of a fraction of at least one digit.
  std::chrono::microseconds fraction() {
    std::chrono::microseconds value{0};
    std::chrono::microseconds place{100'000};
    do {
      value += digit() * place;
      place /= 10;
    } while (!failed_ && hasDigit());
    return value;
  }

  [[nodiscard]] bool isAtEnd() const { return !failed_ && rest_.empty(); }

private:
  [[nodiscard]] bool hasDigit() const {
    return !rest_.empty() && rest_.front() >= '0' && rest_.front() <= '9';
  }

  int digit() {
    failed_ |= !hasDigit();
    if (failed_) return 0;
    const int value = rest_.front() - '0';
    rest_.remove_prefix(1);
    return value;
  }

  std::string_view rest_;
  bool failed_ = false;
};

std::chrono::minutes offset(Scanner& scanner) {
  if (scanner.skip('Z')) return {};
  const bool isBehind = scanner.skip('-');
  if (!isBehind) scanner.expect('+');
  const std::chrono::hours hours(scanner.number(2, 23));
  scanner.expect(':');
  const std::chrono::minutes minutes(scanner.number(2, 59));
  return isBehind ? -(hours + minutes) : hours + minutes;
}

} // namespace

DocumentDate documentDate(runtime::WallTime time) {
  return std::chrono::floor<DocumentDate::duration>(time);
}

std::optional<DocumentDate> dateFromISO8601(std::string_view text) {
  Scanner scanner(text);
  const std::chrono::year year(scanner.number(4, 9999));
  scanner.expect('-');
  const std::chrono::month month(static_cast<unsigned>(scanner.number(2, 12)));
  scanner.expect('-');
  const std::chrono::day day(static_cast<unsigned>(scanner.number(2, 31)));
  scanner.expect('T');
  DocumentDate::duration timeOfDay = std::chrono::hours(scanner.number(2, 23));
  scanner.expect(':');
  timeOfDay += std::chrono::minutes(scanner.number(2, 59));
  scanner.expect(':');
  timeOfDay += std::chrono::seconds(scanner.number(2, 59));
  if (scanner.skip('.')) timeOfDay += scanner.fraction();
  timeOfDay -= offset(scanner);

  const std::chrono::year_month_day date(year, month, day);
  if (!scanner.isAtEnd() || !date.ok()) return std::nullopt;
  return std::chrono::sys_days(date) + timeOfDay;
}

DocumentDate readDate(const core::JSONReader& json) {
  const auto date = dateFromISO8601(json.asString());
  if (!date) json.fail(core::DecodeError::Kind::dataCorrupted, "Expected an ISO 8601 date-time");
  return *date;
}

} // namespace ventolith::app
