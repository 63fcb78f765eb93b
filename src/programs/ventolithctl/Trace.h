// A recorded run of a machine: a text with one reading a line, each a JSON object:
//
//   {"t":1.5,"fans":[{"id":0,"name":"Fan 0","currentRPM":2317,"minRPM":2000,"maxRPM":8000,"mode":0}],
//    "temps":[{"key":"TCHP","name":"CPU","celsius":61.5,"category":"CPU","source":"SMC"}]}
//
// `mode` may be missing. A line may also carry "plan", the plan from this reading on, and "reset":true,
// which makes the evaluator forget before it. Other keys are ignored.
#pragma once

#include "core/FanControlPlan.h"
#include "core/SensorSnapshot.h"
#include "programs/ventolithctl/TraceLineParser.h"

#include <istream>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace ventolith::ctl {

/// The most that is read of one line.
inline constexpr std::size_t maxTraceLineBytes = 1 << 20;
/// A time of a trace lies within this many seconds of 0 either way.
inline constexpr double maxTraceSeconds = 1e9;

/// Decodes one line by the rules of all records. Fails with core::DecodeError.
void decodeTraceLine(std::string_view line, TraceTick& tick);

/// Reads a trace line by line, in the memory of one line.
class TraceReader {
public:
  /// `name` is what failures call it. `in` outlives the reader.
  TraceReader(std::istream& in, std::string name);

  /// The next reading, valid until the next call; none at the end. Fails with InputError, which names
  /// the line, on a line that cannot be decoded, is too long, or whose time goes backwards.
  [[nodiscard]] const TraceTick* next();

private:
  [[nodiscard]] std::optional<std::string_view> nextLine();
  void checkTime() const;
  [[noreturn]] void fail(std::string_view what) const;

  std::istream& in_;
  std::string name_;
  std::vector<char> buffer_;
  std::size_t line_ = 0;
  std::optional<double> previousSeconds_;
  TraceTick tick_;
  TraceLineParser parser_;
};

/// The ids of all sensors of a trace. Fails with InputError.
[[nodiscard]] std::set<std::string> sensorIDs(TraceReader& trace);

/// A line of a trace, with its end of line. Fails with std::invalid_argument if a number is not finite.
[[nodiscard]] std::string traceLine(double seconds, const core::SensorSnapshot& snapshot);

/// The lists of a trace line, as JSON.
[[nodiscard]] core::JSON fansJSON(const core::SensorSnapshot& snapshot);
[[nodiscard]] core::JSON tempsJSON(const core::SensorSnapshot& snapshot);

} // namespace ventolith::ctl
