// Whom a signed helper lets in, in the language of code-signing requirements.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace ventolith::platform {

/// The identifiers that the two clients are signed with.
inline constexpr std::string_view applicationIdentifier = "com.ventolith.app";
inline constexpr std::string_view commandLineToolIdentifier = "com.ventolith.ctl";

/// Met by whatever is signed by a certificate that Apple has issued to `team`. None for what is no team's
/// identifier (ten capital letters and digits): nothing else may find its way into the requirement's text.
[[nodiscard]] std::optional<std::string> teamRequirement(std::string_view team);

/// Met by the team's application and command-line tool alone. None as above.
[[nodiscard]] std::optional<std::string> clientRequirement(std::string_view team);

} // namespace ventolith::platform
