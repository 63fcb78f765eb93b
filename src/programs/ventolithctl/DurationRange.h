// What `--seconds` takes.
#pragma once

#include <CLI/CLI.hpp>

#include <cmath>
#include <string>

namespace ventolith::ctl {

/// 0 to 1e9 seconds; not a number is none of them.
[[nodiscard]] inline CLI::Validator durationRange() {
  return CLI::Range(0.0, 1e9) & CLI::Validator(
                                    [](const std::string& text) {
                                      double seconds = 0;
                                      const bool isFinite =
                                          CLI::detail::lexical_cast(text, seconds) && std::isfinite(seconds);
                                      return isFinite ? std::string() : text + " is no number of seconds";
                                    },
                                    "");
}

} // namespace ventolith::ctl
