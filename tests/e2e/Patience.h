// How long a test waits for what is to happen.
#pragma once

#include <chrono>

namespace ventolith::e2e {

/// Real time after which it is said to have been in vain: far more than anything takes on a busy machine.
constexpr std::chrono::seconds patience{40};

} // namespace ventolith::e2e
