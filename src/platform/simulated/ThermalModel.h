// How the machine warms up under load and how its fans cool it.
#pragma once

#include "platform/simulated/MachineDescription.h"

#include <vector>

namespace ventolith::simulated {

/// Each zone goes exponentially towards the temperature at which its heat and its cooling balance. Moving
/// air brings that temperature down and is reached the faster.
class ThermalModel {
public:
  /// Starts in balance at load 0 with `airflow`, the fans' share of their full speed, 0 to 1.
  ThermalModel(double ambientCelsius, std::vector<ZoneDescription> zones, double airflow);

  void step(double seconds, double load, double airflow);

  /// Degrees Celsius, in the order of the zones.
  [[nodiscard]] const std::vector<double>& temperatures() const { return temperatures_; }

private:
  [[nodiscard]] double balance(const ZoneDescription& zone, double load, double airflow) const;

  double ambientCelsius_;
  std::vector<ZoneDescription> zones_;
  std::vector<double> temperatures_;
};

} // namespace ventolith::simulated
