#include "platform/macos/service/DaemonStatusOf.h"
#include "platform/macos/service/MachService.h"

#include <gtest/gtest.h>

namespace {

using namespace ventolith::platform;
using ventolith::helper::DaemonStatus;
using Domain = MachService::Domain;

TEST(MachService, IsTheSystemsUnlessAnotherIsAskedFor) {
  EXPECT_EQ(machServiceOf(std::nullopt, false), (MachService{"com.ventolith.helper", Domain::system}));
  EXPECT_EQ(machServiceOf("com.example", false), (MachService{"com.example", Domain::user}));
  EXPECT_EQ(machServiceOf("com.example", true), (MachService{"com.example", Domain::user}));
  EXPECT_EQ(machServiceOf(std::nullopt, true),
            (MachService{"com.ventolith.helper.development", Domain::user}));
}

TEST(DaemonStatusOf, KnowsTheFourAndTakesNoOtherForAHelper) {
  EXPECT_EQ(daemonStatusOf(0), DaemonStatus::notRegistered);
  EXPECT_EQ(daemonStatusOf(1), DaemonStatus::enabled);
  EXPECT_EQ(daemonStatusOf(2), DaemonStatus::requiresApproval);
  EXPECT_EQ(daemonStatusOf(3), DaemonStatus::notFound);
  EXPECT_EQ(daemonStatusOf(4), DaemonStatus::notFound);
  EXPECT_EQ(daemonStatusOf(-1), DaemonStatus::notFound);
}

} // namespace
