// A replay as text for people: a table of the moments at which something changes, and at its end the
// course of the temperature and of each fan's target.
#pragma once

#include "programs/ventolithctl/Output.h"
#include "programs/ventolithctl/Replay.h"
#include "programs/ventolithctl/StripChart.h"

#include <cstdint>
#include <map>
#include <string>

namespace ventolith::ctl {

class ReplayReport {
public:
  /// `out` outlives the report. A row follows at the latest `every` ticks after the last; 0 is never.
  ReplayReport(Output& out, std::size_t every) : out_(out), every_(every) {}

  void add(const TraceTick& tick, const ReplayTick& result);

  /// The last tick and the charts.
  void finish();

private:
  struct FanCourse {
    std::string name;
    double minRPM = 0;
    double maxRPM = 0;
    Course targets;
  };

  [[nodiscard]] bool isWorthARow(const TraceTick& tick, const ReplayTick& result) const;
  [[nodiscard]] std::string row(const TraceTick& tick, const ReplayTick& result) const;
  void follow(const TraceTick& tick, const ReplayTick& result);
  void drawTemperature() const;
  void drawFan(const FanCourse& fan) const;
  [[nodiscard]] std::size_t chartColumns() const;

  Output& out_;
  std::size_t every_;
  std::size_t ticks_ = 0;
  std::size_t ticksSinceRow_ = 0;
  ReplayTick shown_;    // The tick of the last row.
  std::string lastRow_; // Of the last tick, whether it was shown or not.
  double firstSeconds_ = 0;
  double lastSeconds_ = 0;
  Course hottest_;
  std::map<core::FanID, FanCourse> fans_;
};

} // namespace ventolith::ctl
