// A fake Mac below the sources under test, which gets back all that it gave.
#pragma once

#include "fake/Objects.h"
#include "platform/simulated/SimulatedMachine.h"
#include "support/VirtualTime.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace ventolith::platform {

using Log = std::vector<std::string>;

/// Fails the test if an object was used wrongly, or if one, or a pool, is still there when everything else of
/// the test is gone.
class MacTest : public testing::Test {
protected:
  MacTest() = default;
  ~MacTest() override {
    EXPECT_EQ(objects_.complaints(), Log{});
    EXPECT_EQ(objects_.held(), Log{});
    EXPECT_FALSE(objects_.hasPool());
  }

  fake::Objects objects_;
  support::VirtualTime time_;
  std::shared_ptr<simulated::SimulatedMac> mac_ = simulated::makeSimulatedMac("macbook-pro", time_.clock, 1);
};

} // namespace ventolith::platform
