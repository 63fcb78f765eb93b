// The small differences between two samples of one sensor.
#pragma once

#include <cstdint>

namespace ventolith::simulated {

/// A seeded sequence that is the same on every system.
class Noise {
public:
  explicit Noise(std::uint64_t seed) : state_(seed) {}

  /// The next number, from 0 to below 1.
  [[nodiscard]] double next() {
    state_ += 0x9E3779B97F4A7C15U;
    std::uint64_t mixed = state_;
    mixed = (mixed ^ (mixed >> 30)) * 0xBF58476D1CE4E5B9U;
    mixed = (mixed ^ (mixed >> 27)) * 0x94D049BB133111EBU;
    mixed ^= mixed >> 31;
    return static_cast<double>(mixed >> 11) * 0x1.0p-53;
  }

private:
  std::uint64_t state_;
};

} // namespace ventolith::simulated
