// A connection on a driver that answers from a script.
#pragma once

#include "hardware/SMCConnection.h"
#include "hardware/doubles/ScriptedUserClient.h"
#include "support/VirtualTime.h"

#include <gtest/gtest.h>

namespace ventolith::hardware {

class SMCConnectionTest : public testing::Test {
protected:
  /// Runs `work` to its end.
  template <class Result>
  Result run(runtime::Async<Result> work) {
    return time_.clock.run(std::move(work));
  }
  void run(runtime::Async<void> work) { time_.clock.run(std::move(work)); }

  /// The driver's answers to the calls that follow, in order.
  void answer(std::deque<doubles::Reply> replies) { client_.replies = std::move(replies); }

  support::VirtualTime time_;
  doubles::ScriptedUserClient client_;
  SMCConnection connection_{time_.executor(), client_};
};

/// The blocks that ask about "FNum" and the like, by their bytes. `key` is the packed key, least
/// significant byte first.
inline doubles::Block infoBlock(const std::vector<std::uint8_t>& key) {
  return doubles::blockOf({{0, key}, {42, {9}}});
}

} // namespace ventolith::hardware
