#include "core/NumberText.h"

#include <fmt/format.h>

namespace ventolith::core {

std::string fractionText(double value) {
  std::string text = fmt::format("{}", value);
  const bool isWhole = text.find_first_not_of("-0123456789") == std::string::npos;
  return isWhole ? text + ".0" : text;
}

} // namespace ventolith::core
