// Whom the helper follows.
#include "e2e/HelperHouse.h"

#include <gtest/gtest.h>

#include <unistd.h>

#include <filesystem>
#include <memory>

namespace ventolith::e2e {
namespace {

constexpr std::int64_t applied = 0;
constexpr std::int64_t notPrivileged = 5;
const MockedObject polkitObject{.name = "org.freedesktop.PolicyKit1",
                                .path = "/org/freedesktop/PolicyKit1/Authority",
                                .interface = "org.freedesktop.PolicyKit1.Authority"};
const std::string accessDenied = "org.freedesktop.DBus.Error.AccessDenied";

/// Root is admitted without polkit's word.
Peer peerNotAsRoot(HelperHouse& house) {
  const NotAsRoot another;
  return Peer(house.bus().address());
}

/// Runs a program as another user than root. Wholly: a program that is root by half may not be looked into,
/// not even by the search for leaks in it.
Ended runNotAsRoot(std::string program, std::vector<std::string> arguments,
                   const Environment& environment = {}) {
  if (::geteuid() != 0) return run(program, std::move(arguments), environment);
  arguments.insert(arguments.begin(),
                   {"--reuid=65534", "--regid=65534", "--clear-groups", std::move(program)});
  return run("/usr/bin/setpriv", std::move(arguments), environment);
}

/// What `busctl`, as another user than root, says to a FullBlast.
Ended fullBlastNotAsRoot(HelperHouse& house, const std::vector<std::string>& options = {}) {
  std::vector<std::string> arguments = options;
  arguments.insert(arguments.begin(), "--address=" + house.bus().address());
  arguments.insert(arguments.end(), {"call", "com.ventolith.helper", "/com/ventolith/helper",
                                     "com.ventolith.FanHelperProtocol", "FullBlast"});
  return runNotAsRoot("/usr/bin/busctl", std::move(arguments));
}

TEST(HelperPermission, NobodyWhomPolkitRefusesChangesAnything) {
  HelperHouse house;
  const MockPolkit polkit(house.bus());
  const auto helper = house.startHelper({});
  const Peer peer = peerNotAsRoot(house);
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
  const Peer peer = peerNotAsRoot(house);

  polkit.setAdmitsAll(true);
  EXPECT_EQ(peer.call<std::int64_t>("SetManualRPM", std::int64_t{0}, std::int64_t{3000}), applied);
  polkit.setAdmitsAll(false);
  EXPECT_EQ(peer.call<std::int64_t>("SetManualRPM", std::int64_t{0}, std::int64_t{4000}), notPrivileged);
  EXPECT_EQ(house.mac().lastWrite("F0Tg"), "00803b45"); // Still 3000.
}

TEST(HelperPermission, TheSystemsServiceListensToNoVariable) {
  const bool wouldServeTheRealBus =
      ::geteuid() == 0 && std::filesystem::exists("/run/dbus/system_bus_socket");
  if (wouldServeTheRealBus) GTEST_SKIP() << "root would become the helper of this computer's own bus";
  HelperHouse house;
  const auto before = house.mac().journal().size();
  Environment environment = house.environment();
  environment["DBUS_SYSTEM_BUS_ADDRESS"] = house.bus().address();
  environment["DBUS_SESSION_BUS_ADDRESS"] = house.bus().address();
  environment["XDG_RUNTIME_DIR"] = house.folder().string();
  const Ended ended = run("ventolith-helper", {"--system-service", "--allow-same-user"}, environment);
  EXPECT_EQ(ended.status, 1) << ended.err; // It looked for the system's bus, and not for ours.
  EXPECT_EQ(house.mac().journal().size(), before);
}

TEST(HelperPermission, RootIsFollowedThoughPolkitHangs) {
  if (::geteuid() != 0) GTEST_SKIP() << "only root can play root";
  HelperHouse house;
  MockPeer polkit(house.bus(), polkitObject, "polkitd");
  polkit.control("SimulateHang", true);
  const auto helper = house.startHelper({});
  EXPECT_EQ(Peer(house.bus().address()).call<std::int64_t>("FullBlast"), applied);
}

TEST(HelperPermission, PolkitThatGoesEndsNoHelperWhoseStandardErrorIsFull) {
  HelperHouse house;
  auto polkit = std::make_unique<MockPeer>(house.bus(), polkitObject, "polkitd");
  polkit->control("AllowUnknown", true);
  Streams streams;
  streams.err = "/dev/full";
  const auto helper = house.startHelper({}, streams);
  const Peer peer = peerNotAsRoot(house);
  ASSERT_EQ(peer.call<std::int64_t>("FullBlast"), applied);
  polkit.reset();
  waitUntilOwned(house.bus(), polkitObject.name, false);
  EXPECT_EQ(peer.call<std::int64_t>("FullBlast"), notPrivileged);
  EXPECT_TRUE(helper->isRunning());
  EXPECT_EQ(peer.state().at("isHolding"), true);
}

TEST(HelperPermission, IsNotAskedOfAPersonForACallThatDoesNotWait) {
  HelperHouse house;
  MockPeer polkit(house.bus(), polkitObject);
  polkit.answer("CheckAuthorization", "(sa{sv})sa{ss}us", "(bba{ss})", "ret = (args[3] == 1, True, {})");
  const auto helper = house.startHelper({});
  const auto fullBlast = [&](const std::string& waits) {
    return fullBlastNotAsRoot(house, {"--allow-interactive-authorization=" + waits}).out;
  };
  EXPECT_EQ(fullBlast("no"), "x 5\n");
  EXPECT_EQ(fullBlast("yes"), "x 0\n");
}

TEST(HelperPermission, IsNotGivenToAnotherUserByAHelperForThisUser) {
  if (::geteuid() != 0) GTEST_SKIP() << "only root can be another user";
  HelperHouse house;
  const auto helper = house.startHelper();
  const Ended ended = fullBlastNotAsRoot(house);
  EXPECT_EQ(ended.out, "x 5\n") << ended.err;
  EXPECT_TRUE(house.isEveryFanBack());
}

TEST(HelperPermission, ToldByTheProgramAsWell) {
  HelperHouse house;
  const MockPolkit polkit(house.bus());
  const auto helper = house.startHelper({});
  const Ended ended = runNotAsRoot(VENTOLITH_PROGRAMS "/ventolithctl", {"full-blast"}, house.environment());
  EXPECT_EQ(ended.status, 15) << ended.out << ended.err;
  EXPECT_TRUE(house.isEveryFanBack());
}

} // namespace
} // namespace ventolith::e2e
