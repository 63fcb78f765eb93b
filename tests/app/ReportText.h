// What a self-test printed, as its lines.
#pragma once

#include "app/selftest/SelfTestOutput.h"

#include <sstream>
#include <string>
#include <vector>

namespace ventolith::app {

using Lines = std::vector<std::string>;

/// The lines of `text`, each of which ends with a line feed.
[[nodiscard]] inline Lines linesOf(const std::string& text) {
  Lines lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);)
    lines.push_back(line);
  if (!text.empty() && text.back() != '\n') lines.push_back("(the last line has no line feed)");
  return lines;
}

/// An output that keeps what is printed.
struct ReportText {
  std::ostringstream printed;
  std::ostringstream errors;
  SelfTestOutput output{printed, errors};

  [[nodiscard]] Lines lines() const { return linesOf(printed.str()); }
  [[nodiscard]] Lines errorLines() const { return linesOf(errors.str()); }
};

} // namespace ventolith::app
