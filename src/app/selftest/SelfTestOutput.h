// Where a self-test run writes to, and the forms of its lines.
#pragma once

#include <ostream>
#include <string>

namespace ventolith::app {

class SelfTestOutput {
public:
  /// `lines` takes the report, `errors` the one line about a driver that cannot be opened.
  SelfTestOutput(std::ostream& lines, std::ostream& errors) : lines_(lines), errors_(errors) {}

  void print(const std::string& line) { lines_ << line << '\n'; }
  void printError(const std::string& line) { errors_ << line << '\n'; }

  /// Prints "  [PASS] label" or "  [FAIL] label"; a failed check clears `allOK`, which nothing sets back.
  void check(const std::string& label, bool ok, bool& allOK);

private:
  std::ostream& lines_;
  std::ostream& errors_;
};

} // namespace ventolith::app
