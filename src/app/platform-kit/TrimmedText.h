// Settings that people type.
#pragma once

#include <string_view>

namespace ventolith::app {

/// `text`, which is UTF-8, without the blanks and line ends around it: those of Unicode, the no-break space
/// that a web page leaves in the clipboard included.
[[nodiscard]] std::string_view trimmed(std::string_view text);

} // namespace ventolith::app
