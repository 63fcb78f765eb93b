// Whom the helper follows.
#include "e2e/HelperHouse.h"

#include <gtest/gtest.h>

#include <unistd.h>

namespace ventolith::e2e {
namespace {

constexpr std::int64_t applied = 0;
constexpr std::int64_t notPrivileged = 5;
const std::string accessDenied = "org.freedesktop.DBus.Error.AccessDenied";

TEST(HelperPermission, NobodyWhomPolkitRefusesChangesAnything) {
  HelperHouse house;
  const MockPolkit polkit(house.bus());
  const auto helper = house.startHelper({});
  const Peer peer(house.bus().address());
  const auto before = house.mac().journal().size();

  EXPECT_EQ(peer.call<std::int64_t>("SetManualRPM", std::int64_t{0}, std::int64_t{3000}), notPrivileged);
  EXPECT_EQ(peer.call<std::int64_t>("SetPercent", std::int64_t{0}, 50.0), notPrivileged);
  EXPECT_EQ(peer.call<std::int64_t>("FullBlast"), notPrivileged);
  EXPECT_EQ(peer.call<std::int64_t>("Automatic"), notPrivileged);
  EXPECT_EQ(peer.call<std::int64_t>("ApplyConfig", std::vector<std::uint8_t>{'{', '}'}), notPrivileged);
  EXPECT_EQ(peer.errorOf("RestoreAuto"), accessDenied);
  EXPECT_EQ(peer.errorOf("ShutdownForUpgrade"), accessDenied);

  EXPECT_EQ(house.mac().journal().size(), before);
  EXPECT_EQ(peer.state().at("isHolding"), false);
  EXPECT_FALSE(peer.call<std::string>("HelperVersion").empty());
}

TEST(HelperPermission, IsAskedForAtEveryCommand) {
  HelperHouse house;
  const MockPolkit polkit(house.bus());
  const auto helper = house.startHelper({});
  const Peer peer(house.bus().address());

  polkit.setAdmitsAll(true);
  EXPECT_EQ(peer.call<std::int64_t>("SetManualRPM", std::int64_t{0}, std::int64_t{3000}), applied);
  polkit.setAdmitsAll(false);
  EXPECT_EQ(peer.call<std::int64_t>("SetManualRPM", std::int64_t{0}, std::int64_t{4000}), notPrivileged);
  EXPECT_EQ(house.mac().lastWrite("F0Tg"), "00803b45"); // Still 3000.
}

TEST(HelperPermission, TheSystemsServiceListensToNoVariable) {
  HelperHouse house;
  const auto before = house.mac().journal().size();
  Environment environment = house.environment();
  environment["DBUS_SYSTEM_BUS_ADDRESS"] = "unix:path=" + (house.folder() / "no-bus").string();
  const Ended ended = run("ventolith-helper", {"--system-service", "--allow-same-user"}, environment);
  EXPECT_EQ(ended.status, 1) << ended.err; // It looked for the system's bus, and not for ours.
  EXPECT_EQ(house.mac().journal().size(), before);
}

TEST(HelperPermission, IsNotAskedOfAPersonForACallThatDoesNotWait) {
  HelperHouse house;
  MockPeer polkit(house.bus(), {"org.freedesktop.PolicyKit1", "/org/freedesktop/PolicyKit1/Authority",
                                "org.freedesktop.PolicyKit1.Authority"});
  polkit.answer("CheckAuthorization", "(sa{sv})sa{ss}us", "(bba{ss})", "ret = (args[3] == 1, False, {})");
  const auto helper = house.startHelper({});
  const auto fullBlast = [&](const std::string& waits) {
    return run("/usr/bin/busctl",
               {"--address=" + house.bus().address(), "--allow-interactive-authorization=" + waits, "call",
                "com.ventolith.helper", "/com/ventolith/helper", "com.ventolith.FanHelperProtocol",
                "FullBlast"})
        .out;
  };
  EXPECT_EQ(fullBlast("no"), "x 5\n");
  EXPECT_EQ(fullBlast("yes"), "x 0\n");
}

TEST(HelperPermission, IsNotGivenToAnotherUserByAHelperForThisUser) {
  if (::geteuid() != 0) GTEST_SKIP() << "only root can be another user";
  HelperHouse house;
  const auto helper = house.startHelper();
  const Ended ended =
      run("/usr/bin/setpriv", {"--reuid=65534", "--regid=65534", "--clear-groups", "/usr/bin/busctl",
                               "--address=" + house.bus().address(), "call", "com.ventolith.helper",
                               "/com/ventolith/helper", "com.ventolith.FanHelperProtocol", "FullBlast"});
  EXPECT_EQ(ended.out, "x 5\n") << ended.err;
  EXPECT_TRUE(house.isEveryFanBack());
}

TEST(HelperPermission, ToldByTheProgramAsWell) {
  HelperHouse house;
  const MockPolkit polkit(house.bus());
  const auto helper = house.startHelper({});
  const Ended ended = house.ctl({"full-blast"});
  EXPECT_EQ(ended.status, 15) << ended.out << ended.err;
  EXPECT_TRUE(house.isEveryFanBack());
}

} // namespace
} // namespace ventolith::e2e
