// The kernel's notices about power supplies, with one end of a pair of sockets in the kernel's place.
#include "platform/linux/desktop/KernelEvents.h"
#include "platform/linux/desktop/PowerSupplySource.h"
#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <boost/asio/io_context.hpp>

#include <sys/socket.h>

#include <array>
#include <filesystem>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace ventolith::platform {
namespace {

using app::PowerSource;

/// As the kernel writes it: a zero byte ends each line.
std::string notice(const std::vector<std::string>& lines) {
  std::string text;
  for (const std::string& line : lines)
    text += line + '\0';
  return text;
}

const std::string batteryChanged =
    notice({"change@/devices/LNXSYSTM:00/PNP0C0A:00/power_supply/BAT0", "ACTION=change",
            "DEVPATH=/devices/LNXSYSTM:00/PNP0C0A:00/power_supply/BAT0", "SUBSYSTEM=power_supply",
            "POWER_SUPPLY_NAME=BAT0", "SEQNUM=4711"});
const std::string diskAdded =
    notice({"add@/devices/pci0000:00/block/sda", "ACTION=add", "SUBSYSTEM=block", "SEQNUM=4712"});

struct NoticeCase {
  const char* name;
  std::string datagram;
  bool expected;
};

class Notice : public testing::TestWithParam<NoticeCase> {};

TEST_P(Notice, IsToldApart) {
  EXPECT_EQ(isPowerSupplyNotice(sockaddr_nl{}, GetParam().datagram), GetParam().expected);
}

const std::vector<NoticeCase> noticeCases = {
    {"OfABattery", batteryChanged, true},
    {"OfADisk", diskAdded, false},
    {"WithoutItsLastZero", "add@/x" + std::string(1, '\0') + "SUBSYSTEM=power_supply", true},
    {"CutInTheMiddle",
     batteryChanged.substr(0, batteryChanged.find("supply", batteryChanged.find("SUBSYSTEM"))), false},
    {"Empty", "", false},
    {"OnlyZeroBytes", std::string(64, '\0'), false},
    {"WithoutAnyZero", std::string(8192, 'A'), false},
    {"OfALongerSubsystem", notice({"add@/x", "SUBSYSTEM=power_supply_other"}), false},
    {"WithTheWordsInAnotherLine", notice({"add@/x", "NAME=SUBSYSTEM=power_supply"}), false},
    {"WithTheWordsInItsPath", notice({"add@/power_supply", "SUBSYSTEM=usb"}), false},
    {"OfUdev", notice({"libudev", "SUBSYSTEM=usb"}), false},
};

INSTANTIATE_TEST_SUITE_P(All, Notice, testing::ValuesIn(noticeCases),
                         [](const auto& info) { return std::string(info.param.name); });

TEST(Notice, OfAnotherProcessIsNone) {
  sockaddr_nl process{};
  process.nl_pid = 1234;

  EXPECT_FALSE(isPowerSupplyNotice(process, batteryChanged));
}

/// A machine of one battery, whose kernel is the test.
struct PowerSupplyEventsTest : testing::Test {
  PowerSupplyEventsTest() {
    std::array<int, 2> ends{};
    if (::socketpair(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0, ends.data()) != 0)
      throw std::runtime_error("no pair of sockets");
    kernel = Descriptor(ends[0]);
    received = Descriptor(ends[1]);
    std::filesystem::create_directory(folder / "BAT0");
    folder.write("BAT0/type", "Battery\n");
    setStatus("Discharging");
  }

  void setStatus(const std::string& status) const { folder.write("BAT0/status", status + "\n"); }
  void send(const std::string& datagram) const {
    ASSERT_EQ(::send(kernel.get(), datagram.data(), datagram.size(), 0),
              static_cast<ssize_t>(datagram.size()));
  }
  /// Runs what is ready; says how much that was.
  std::size_t settle() {
    context.restart();
    return context.poll();
  }
  void start() {
    source = std::make_unique<PowerSupplySource>(context.get_executor(), folder.path(), std::move(received));
    source->start([this] { told.push_back(source->current()); });
  }

  support::TemporaryFolder folder;
  boost::asio::io_context context;
  Descriptor kernel{-1};
  Descriptor received{-1};
  std::unique_ptr<PowerSupplySource> source;
  std::vector<PowerSource> told;
};
using Told = std::vector<PowerSource>;

TEST_F(PowerSupplyEventsTest, TheSourceIsKnownFromTheStart) {
  start();

  EXPECT_EQ(source->current(), PowerSource::battery);
  EXPECT_EQ(told, Told{});
}

TEST_F(PowerSupplyEventsTest, ANoticeHasTheFolderReadAgain) {
  start();
  setStatus("Charging");
  send(batteryChanged);
  settle();

  EXPECT_EQ(told, (Told{PowerSource::ac}));
  EXPECT_EQ(source->current(), PowerSource::ac);
}

TEST_F(PowerSupplyEventsTest, EveryNoticeIsPassedOn) {
  start();
  for (int notice = 0; notice < 3; ++notice) {
    send(batteryChanged);
    settle();
  }

  EXPECT_EQ(told, (Told{PowerSource::battery, PowerSource::battery, PowerSource::battery}));
}

TEST_F(PowerSupplyEventsTest, NoticesThatCameTogetherAreOne) {
  start();
  for (const std::string& datagram : {batteryChanged, diskAdded, batteryChanged, batteryChanged})
    send(datagram);
  settle();

  EXPECT_EQ(told.size(), 1U);
}

TEST_F(PowerSupplyEventsTest, OtherDevicesAreNotPassedOn) {
  start();
  setStatus("Charging");
  send(diskAdded);
  settle();

  EXPECT_EQ(told, Told{});
  EXPECT_EQ(source->current(), PowerSource::battery);
}

TEST_F(PowerSupplyEventsTest, ANoticeLongerThanAnyOfTheKernelsDoesNoHarm) {
  start();
  send(batteryChanged + std::string(64 * 1024, 'x'));
  send(batteryChanged);
  settle();

  EXPECT_EQ(told.size(), 1U);
}

TEST_F(PowerSupplyEventsTest, NothingIsDoneWhileNothingComes) {
  start();
  send(diskAdded);
  send(batteryChanged);
  settle();

  EXPECT_EQ(settle(), 0U);
}

TEST_F(PowerSupplyEventsTest, WithoutNoticesTheSourceStaysAsAtTheStart) {
  received = Descriptor(-1);
  start();
  setStatus("Charging");
  settle();

  EXPECT_EQ(source->current(), PowerSource::battery);
  EXPECT_EQ(settle(), 0U);
}

TEST_F(PowerSupplyEventsTest, ASocketThatFailsIsLeftAlone) {
  // One that must first accept a peer: no read of it succeeds, and it is ready all the time.
  received = Descriptor(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
  start();
  settle();

  EXPECT_EQ(settle(), 0U);
  EXPECT_EQ(told, Told{});
}

// Only root gets so far as to send it; everybody else is refused by the kernel, and nothing is told either.
TEST_F(PowerSupplyEventsTest, WhatAnotherProcessSendsToTheKernelsSocketIsNotBelieved) {
  received = openKernelEvents();
  ASSERT_TRUE(received.isOpen());
  sockaddr_nl address{};
  socklen_t length = sizeof(address);
  ASSERT_EQ(::getsockname(received.get(), reinterpret_cast<sockaddr*>(&address), &length), 0);
  address.nl_groups = 0;
  const Descriptor forger(::socket(AF_NETLINK, SOCK_RAW | SOCK_CLOEXEC, NETLINK_KOBJECT_UEVENT));
  start();
  static_cast<void>(::sendto(forger.get(), batteryChanged.data(), batteryChanged.size(), 0,
                             reinterpret_cast<const sockaddr*>(&address), sizeof(address)));
  settle();

  EXPECT_EQ(told, Told{});
}

TEST_F(PowerSupplyEventsTest, NothingIsToldAfterTheStop) {
  start();
  send(batteryChanged);
  source->stop();
  settle();

  EXPECT_EQ(told, Told{});
}

TEST_F(PowerSupplyEventsTest, NothingIsToldOnceTheSourceIsGone) {
  start();
  send(batteryChanged);
  source.reset();

  EXPECT_NO_THROW(settle());
  EXPECT_EQ(told, Told{});
}

TEST_F(PowerSupplyEventsTest, WhoIsToldMayLetGoOfTheSource) {
  source = std::make_unique<PowerSupplySource>(context.get_executor(), folder.path(), std::move(received));
  int timesTold = 0;
  source->start([&] {
    ++timesTold;
    source.reset();
  });
  send(batteryChanged);
  settle();

  EXPECT_EQ(timesTold, 1);
  EXPECT_EQ(settle(), 0U);
}

TEST_F(PowerSupplyEventsTest, WhatWasNeverStartedIsUnknownAndStops) {
  source = std::make_unique<PowerSupplySource>(context.get_executor(), folder.path(), std::move(received));
  source->stop();

  EXPECT_EQ(source->current(), PowerSource::unknown);
}

} // namespace
} // namespace ventolith::platform
