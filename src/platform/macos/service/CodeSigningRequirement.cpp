#include "platform/macos/service/CodeSigningRequirement.h"

#include <fmt/format.h>

#include <algorithm>

namespace ventolith::platform {

namespace {

bool isTeamIdentifier(std::string_view text) {
  constexpr std::size_t length = 10;
  const auto isAllowed = [](char letter) {
    return (letter >= 'A' && letter <= 'Z') || (letter >= '0' && letter <= '9');
  };
  return text.size() == length && std::all_of(text.begin(), text.end(), isAllowed);
}

} // namespace

std::optional<std::string> teamRequirement(std::string_view team) {
  if (!isTeamIdentifier(team)) return std::nullopt;
  return fmt::format("anchor apple generic and certificate leaf[subject.OU] = \"{}\"", team);
}

std::optional<std::string> clientRequirement(std::string_view team) {
  const auto ofTeam = teamRequirement(team);
  if (!ofTeam) return std::nullopt;
  return fmt::format("{} and (identifier \"{}\" or identifier \"{}\")", *ofTeam, applicationIdentifier,
                     commandLineToolIdentifier);
}

} // namespace ventolith::platform
