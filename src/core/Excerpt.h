// Foreign text in the messages of the system.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace ventolith::core {

/// Characters of one foreign word, such as a key or a value, in a message.
inline constexpr std::size_t excerptCharacters = 60;

/// `text` as a message may show it: its first `most` characters, and an ellipsis if there are more. A
/// control character, which a terminal would obey, and a byte that is no UTF-8 become U+FFFD.
[[nodiscard]] std::string excerpt(std::string_view text, std::size_t most = excerptCharacters);

} // namespace ventolith::core
