// A controller's states as the commands that hold fans show them.
#pragma once

#include "core/ControlContract.h"
#include "programs/ventolithctl/Output.h"

#include <cstddef>
#include <deque>
#include <string>

namespace ventolith::ctl {

/// What `state` says in words, in one line: each fan with its mode and target, and what is wrong.
[[nodiscard]] std::string stateText(const core::ControlState& state);

/// Shows each state as a JSON line, or what has changed in words. It never waits for a reader while fans
/// are held: what cannot be shown at once is kept, the newest of it at the least, and shown later.
class StateReport {
public:
  enum class Form { words, json };

  /// `out` outlives it. What it does fails with OutputError.
  StateReport(Form form, Output& out) : form_(form), out_(out) {}

  void show(const core::ControlState& state);

  /// A line between the states; JSON has none.
  void say(const std::string& line);

  /// Shows all that is left, waiting for the reader.
  void finish();

private:
  void add(const std::string& line);
  void writeNext();

  static constexpr std::size_t mostPending = 256;

  Form form_;
  Output& out_;
  std::string lastText_;
  std::deque<std::string> pending_;
};

} // namespace ventolith::ctl
