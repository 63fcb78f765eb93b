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
  for (const auto list : {PropertyList::isBrought, PropertyList::isMissing}) {
    EXPECT_EQ(daemonStatusOf(0, list), DaemonStatus::notRegistered);
    EXPECT_EQ(daemonStatusOf(1, list), DaemonStatus::enabled);
    EXPECT_EQ(daemonStatusOf(2, list), DaemonStatus::requiresApproval);
    EXPECT_EQ(daemonStatusOf(4, list), DaemonStatus::notFound);
    EXPECT_EQ(daemonStatusOf(-1, list), DaemonStatus::notFound);
  }
}

TEST(DaemonStatusOf, TakesWhatMacOSHasNotFoundYetForNotRegisteredWhereTheBundleBringsIt) {
  EXPECT_EQ(daemonStatusOf(3, PropertyList::isBrought), DaemonStatus::notRegistered);
  EXPECT_EQ(daemonStatusOf(3, PropertyList::isMissing), DaemonStatus::notFound);
}

TEST(DaemonStatusOf, KnowsWhatIsRegisteredWhetherOrNotItIsAllowed) {
  EXPECT_TRUE(isRegistered(DaemonStatus::enabled));
  EXPECT_TRUE(isRegistered(DaemonStatus::requiresApproval));
  EXPECT_FALSE(isRegistered(DaemonStatus::notRegistered));
  EXPECT_FALSE(isRegistered(DaemonStatus::notFound));
}

} // namespace
