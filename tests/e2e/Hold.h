// `ventolithctl hold` as it runs.
#pragma once

#include "e2e/Program.h"

#include <map>
#include <string>
#include <vector>

namespace ventolith::e2e {

/// What hold says last when all is well.
inline constexpr const char* everyFanIsBack = "every fan is back with the firmware\n";

class Hold {
public:
  /// Starts to hold each fan of `rpm` at its speed, until a signal if no option says otherwise.
  Hold(const Environment& machine, const std::map<int, int>& rpm,
       const std::vector<std::string>& options = {}, const Streams& streams = {});

  /// Until the fans of the plan are held, as far as the machine lets them be.
  void waitUntilHolding();

  /// Until it has said `text`, on either stream.
  void waitUntilSaid(const std::string& text);

  [[nodiscard]] bool hasSaid(const std::string& text) const;

  /// Its lines, each a state where it was started with --json.
  [[nodiscard]] std::vector<std::string> lines() const { return program_.outLines(); }

  [[nodiscard]] bool isRunning() { return program_.isRunning(); }
  void signal(int number) const { program_.signal(number); }
  Ended wait() { return program_.wait(); }

private:
  /// Waits, but for no program that has ended.
  void waitWhileRunning(const std::string& what, const std::function<bool()>& holds);

  TemporaryFolder folder_;
  Program program_;
};

} // namespace ventolith::e2e
