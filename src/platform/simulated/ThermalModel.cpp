#include "platform/simulated/ThermalModel.h"

#include <cmath>
#include <utility>

namespace ventolith::simulated {

namespace {

double cooling(const ZoneDescription& zone, double airflow) {
  return 1 + zone.airflowEffect * airflow;
}

} // namespace

ThermalModel::ThermalModel(double ambientCelsius, std::vector<ZoneDescription> zones, double airflow)
    : ambientCelsius_(ambientCelsius), zones_(std::move(zones)) {
  for (const ZoneDescription& zone : zones_)
    temperatures_.push_back(balance(zone, 0, airflow));
}

void ThermalModel::step(double seconds, double load, double airflow) {
  for (std::size_t place = 0; place < zones_.size(); ++place) {
    const ZoneDescription& zone = zones_[place];
    const double share = -std::expm1(-seconds * cooling(zone, airflow) / zone.timeConstant);
    temperatures_[place] += (balance(zone, load, airflow) - temperatures_[place]) * share;
  }
}

double ThermalModel::balance(const ZoneDescription& zone, double load, double airflow) const {
  return ambientCelsius_ + (zone.idleRise + load * zone.loadRise) / cooling(zone, airflow);
}

} // namespace ventolith::simulated
