#include "helper/link/HelperMessage.h"

#include "core/Visitor.h"

#include <array>

namespace ventolith::helper {

std::string_view nameOf(const HelperMessage& message) {
  static constexpr std::array<std::string_view, std::variant_size_v<HelperMessage>> names = {
      "HelperVersion", "ShutdownForUpgrade", "SetManualRPM", "SetPercent", "FullBlast",
      "Automatic",     "ApplyConfig",        "RestoreAuto",  "Heartbeat",  "ReadState"};
  return names.at(message.index());
}

bool changesAnything(const HelperMessage& message) {
  return std::visit(core::Visitor{[](const messages::HelperVersion&) { return false; },
                                  [](const messages::ReadState&) { return false; },
                                  [](const messages::Heartbeat&) { return false; },
                                  [](const auto&) { return true; }},
                    message);
}

} // namespace ventolith::helper
