// The fans as the helper's service knows them.
#pragma once

#include "core/ControlContract.h"

#include <optional>
#include <string>

namespace ventolith::helper {

class ServedFans : public core::FanControlling {
public:
  /// The last state published.
  [[nodiscard]] virtual const core::ControlState& currentState() const = 0;

  /// For a helper that ends: every fan goes back, and a fan that refuses is tried a few times. Returns why
  /// not all of them are back; none if they are.
  virtual runtime::Async<std::optional<std::string>> giveEveryFanBack() = 0;
};

} // namespace ventolith::helper
