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

/// Looks for the property list in a bundle that brings it or does not, and counts how often.
struct Bundle {
  PropertyList list;
  mutable int looks = 0;

  PropertyList operator()() const {
    ++looks;
    return list;
  }
};

TEST(DaemonStatusOf, KnowsTheFourAndTakesNoOtherForAHelper) {
  for (const auto list : {PropertyList::isBrought, PropertyList::isMissing}) {
    const Bundle bundle{list};
    EXPECT_EQ(daemonStatusOf(0, bundle), DaemonStatus::notRegistered);
    EXPECT_EQ(daemonStatusOf(1, bundle), DaemonStatus::enabled);
    EXPECT_EQ(daemonStatusOf(2, bundle), DaemonStatus::requiresApproval);
    EXPECT_EQ(daemonStatusOf(4, bundle), DaemonStatus::notFound);
    EXPECT_EQ(daemonStatusOf(-1, bundle), DaemonStatus::notFound);
    EXPECT_EQ(bundle.looks, 0) << "the disk was asked for what is known";
  }
}

TEST(DaemonStatusOf, TakesWhatMacOSHasNotFoundYetForNotRegisteredWhereTheBundleBringsIt) {
  EXPECT_EQ(daemonStatusOf(3, Bundle{PropertyList::isBrought}), DaemonStatus::notRegistered);
  EXPECT_EQ(daemonStatusOf(3, Bundle{PropertyList::isMissing}), DaemonStatus::notFound);
}

TEST(DaemonStatusOf, KnowsWhatIsRegisteredWhetherOrNotItIsAllowed) {
  EXPECT_TRUE(isRegistered(DaemonStatus::enabled));
  EXPECT_TRUE(isRegistered(DaemonStatus::requiresApproval));
  EXPECT_FALSE(isRegistered(DaemonStatus::notRegistered));
  EXPECT_FALSE(isRegistered(DaemonStatus::notFound));
}

} // namespace
