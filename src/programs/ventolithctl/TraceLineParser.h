// The fast road of a trace line: one pass over the text, no document in between, no memory that the
// line before did not use already.
#pragma once

#include "core/FanControlPlan.h"
#include "core/SensorSnapshot.h"

#include <memory>
#include <optional>
#include <string_view>

namespace ventolith::ctl {

/// One line of a trace.
struct TraceTick {
  double seconds = 0; // From the start of the recording.
  core::SensorSnapshot snapshot;
  std::optional<core::FanControlPlan> plan;
  bool reset = false;

  bool operator==(const TraceTick&) const = default;
};

/// Reads lines of the recorded form: the keys that a recording has, each once. It says no to every other
/// line, right or wrong: those are for `decodeTraceLine`. What it reads it reads as that does.
class TraceLineParser {
public:
  TraceLineParser();
  ~TraceLineParser();
  TraceLineParser(const TraceLineParser&) = delete;
  TraceLineParser& operator=(const TraceLineParser&) = delete;

  /// False if the line is not of the recorded form; `tick` is then in any state. A null character
  /// follows `line` in memory.
  [[nodiscard]] bool parse(std::string_view line, TraceTick& tick);

private:
  struct Implementation;
  std::unique_ptr<Implementation> implementation_;
};

} // namespace ventolith::ctl
