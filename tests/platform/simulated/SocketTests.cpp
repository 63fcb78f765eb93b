// A machine over a Unix socket: the server on a thread of its own, the client on the test's.
#include "platform/simulated/Bench.h"
#include "platform/simulated/MachineProtocol.h"
#include "platform/simulated/MachineServer.h"
#include "platform/simulated/SocketMachine.h"

#include <boost/asio/io_context.hpp>
#include <boost/asio/local/stream_protocol.hpp>
#include <boost/asio/post.hpp>
#include <boost/asio/read.hpp>
#include <boost/asio/write.hpp>
#include <gtest/gtest.h>

#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <future>
#include <stdexcept>
#include <thread>

namespace ventolith::simulated {
namespace {

using Protocol = boost::asio::local::stream_protocol;
using Selector = SMCParamStruct::Selector;

std::string socketPath() {
  const auto* const test = testing::UnitTest::GetInstance()->current_test_info();
  return testing::TempDir() + std::to_string(::getpid()) + "." + test->name();
}

/// A served machine. Time stands still on its clock.
class ServedMachine {
public:
  explicit ServedMachine(std::string_view machine, const std::string& path)
      : mac_(makeSimulatedMac(machine, clock_, 1)),
        server_(context_.get_executor(), mac_, path),
        thread_([this] { context_.run(); }) {}

  ~ServedMachine() { end(); }

  void end() {
    if (!thread_.joinable()) return;
    boost::asio::post(context_, [this] { server_.stop(); });
    thread_.join();
  }

  /// Runs `look` on the machine's own thread.
  template <class Look>
  auto on(Look look) {
    std::packaged_task<decltype(look(*mac_))()> task([this, look] { return look(*mac_); });
    auto result = task.get_future();
    boost::asio::post(context_, [&task] { task(); });
    return result.get();
  }

private:
  boost::asio::io_context context_{1};
  boost::asio::io_context clockContext_;
  runtime::ManualClock clock_{clockContext_};
  std::shared_ptr<SimulatedMac> mac_;
  MachineServer server_;
  std::thread thread_;
};

hardware::KernReturn read(hardware::SMCUserClient& client, hardware::IOConnect connection,
                          std::string_view key, std::uint32_t size, SMCParamStruct& output) {
  return client.call(connection, block(Selector::readKey, key, size), output);
}

TEST(SimulatedSocket, CallsPassThrough) {
  const std::string path = socketPath();
  ServedMachine served("mac-mini", path);
  const auto machine = socketMachine(path);
  EXPECT_TRUE(machine.privileges->mayControlFans());
  const auto connection = *machine.smc->open();
  EXPECT_EQ(connection, 1U);
  SMCParamStruct output;
  EXPECT_EQ(read(*machine.smc, connection, "F0Mn", 4, output), 0);
  EXPECT_EQ(output.bytes, hardware::encodeFloat(1700));
  auto write = block(Selector::writeKey, "F0md", 1);
  write.bytes = hardware::encodeUInt8(1);
  output = {};
  EXPECT_EQ(machine.smc->call(connection, write, output), 0);
  EXPECT_EQ(served.on([](SimulatedMac& mac) { return mac.fans()[0].mode(); }), 1);
}

TEST(SimulatedSocket, HubPassesThrough) {
  const std::string path = socketPath();
  ServedMachine served("macbook-pro", path);
  const auto machine = socketMachine(path);
  ASSERT_TRUE(machine.hid->isAvailable());
  const auto discovery = machine.hid->discoverLabeledTemperatureServices();
  ASSERT_TRUE(discovery.has_value());
  EXPECT_EQ(discovery->services.size(), 45U);
  EXPECT_EQ(discovery->services[43].label, "NAND CH0 temp");
  EXPECT_NEAR(*machine.hid->sampleTemperature(discovery->services[43]), 34.5, 0.06);
}

TEST(SimulatedSocket, MachineWithoutHubHasNoneOverTheSocketEither) {
  const std::string path = socketPath();
  ServedMachine served("mac-mini", path);
  const auto machine = socketMachine(path);
  EXPECT_FALSE(machine.hid->isAvailable());
  EXPECT_FALSE(machine.hid->discoverLabeledTemperatureServices().has_value());
}

TEST(SimulatedSocket, ConnectionsAreClosedWithTheSocket) {
  const std::string path = socketPath();
  ServedMachine served("mac-mini", path);
  hardware::IOConnect connection = 0;
  {
    const auto machine = socketMachine(path);
    connection = *machine.smc->open();
  }
  const auto status = [connection](SimulatedMac& mac) {
    SMCParamStruct output;
    return mac.call(connection, block(Selector::readKey, "FNum", 1), output);
  };
  // The server hears of the end of a socket when its turn comes; each look gives it one.
  for (int look = 0; look < 2000 && served.on(status) == hardware::kernSuccess; ++look)
    std::this_thread::yield();
  EXPECT_EQ(served.on(status), ioReturnNotOpen);
}

TEST(SimulatedSocket, VanishedSimulatorIsAFailingDriverWithoutHub) {
  const std::string path = socketPath();
  auto served = std::make_unique<ServedMachine>("macbook-pro", path);
  const auto machine = socketMachine(path);
  const auto connection = *machine.smc->open();
  const auto discovery = *machine.hid->discoverLabeledTemperatureServices();
  served.reset();
  SMCParamStruct output;
  EXPECT_NE(read(*machine.smc, connection, "FNum", 1, output), 0);
  EXPECT_NE(read(*machine.smc, connection, "FNum", 1, output), 0);
  EXPECT_FALSE(machine.hid->isAvailable());
  EXPECT_EQ(machine.hid->sampleTemperature(discovery.services[0]), std::nullopt);
  EXPECT_FALSE(machine.smc->open().has_value());
  machine.smc->close(connection);
}

TEST(SimulatedSocket, SimulatorThatComesUpLaterIsFoundByOpening) {
  const std::string path = socketPath();
  const auto machine = socketMachine(path);
  EXPECT_EQ(machine.smc->open().error(), hardware::SMCError::driverNotFound());
  ServedMachine served("mac-mini", path);
  EXPECT_TRUE(machine.smc->open().has_value());
}

TEST(SimulatedSocket, PathThatIsTooLongIsNoSimulator) {
  const std::string path = "/tmp/" + std::string(200, 'x');
  EXPECT_FALSE(socketMachine(path).smc->open().has_value());
  boost::asio::io_context context;
  runtime::ManualClock clock(context);
  EXPECT_THROW(MachineServer(context.get_executor(), makeSimulatedMac("mac-mini", clock, 1), path),
               std::runtime_error);
}

TEST(SimulatedSocket, ScriptLinesAreDoneAndBadOnesAnswered) {
  const std::string path = socketPath();
  ServedMachine served("mac-mini", path);
  EXPECT_EQ(sendScriptLine(path, R"({"reclaim":[0]})"), std::nullopt);
  EXPECT_EQ(served.on([](SimulatedMac& mac) { return mac.fans()[0].mode(); }), 3);
  EXPECT_EQ(sendScriptLine(path, R"({"load":7})"), "load: expected a number from 0 to 1");
}

TEST(SimulatedSocket, SendingToNobodyFails) {
  EXPECT_THROW(static_cast<void>(sendScriptLine(socketPath(), "{}")), std::runtime_error);
}

TEST(SimulatedSocket, SocketFileGoesWithTheServer) {
  const std::string path = socketPath();
  {
    ServedMachine served("mac-mini", path);
    EXPECT_TRUE(std::filesystem::exists(path));
  }
  EXPECT_FALSE(std::filesystem::exists(path));
}

TEST(SimulatedSocket, StaleSocketFileIsReplaced) {
  const std::string path = socketPath();
  {
    boost::asio::io_context context;
    Protocol::acceptor left(context, Protocol::endpoint(path));
  }
  ASSERT_TRUE(std::filesystem::exists(path));
  ServedMachine served("mac-mini", path);
  EXPECT_TRUE(socketMachine(path).smc->open().has_value());
}

TEST(SimulatedSocket, LiveSocketIsLeftToItsOwner) {
  const std::string path = socketPath();
  ServedMachine served("mac-mini", path);
  EXPECT_THROW(ServedMachine("mac-pro", path), std::runtime_error);
  EXPECT_TRUE(socketMachine(path).smc->open().has_value());
}

TEST(SimulatedSocket, FileThatIsNoSocketIsLeftAlone) {
  const std::string path = socketPath();
  std::ofstream(path) << "precious";
  EXPECT_THROW(ServedMachine("mac-mini", path), std::runtime_error);
  std::string text;
  std::ifstream(path) >> text;
  EXPECT_EQ(text, "precious");
  std::filesystem::remove(path);
}

TEST(SimulatedSocket, HostileFramesAreHungUpOnAndOthersServedOn) {
  const std::string path = socketPath();
  ServedMachine served("mac-mini", path);
  const std::vector<std::vector<std::uint8_t>> hostile{
      {255, 255, 255, 255},        // A frame of four gigabytes.
      {1, 0, 2, 0, 1},             // One byte more than the bound.
      {0, 0, 0, 0},                // An empty one.
      {1, 0, 0, 0, 99},            // No such request.
      {5, 0, 0, 0, 3, 1, 0, 0, 0}, // A call without its block.
  };
  for (const auto& bytes : hostile) {
    boost::asio::io_context context;
    Protocol::socket socket(context);
    socket.connect(Protocol::endpoint(path));
    boost::asio::write(socket, boost::asio::buffer(bytes));
    std::array<std::uint8_t, 1> answer{};
    boost::system::error_code error;
    EXPECT_EQ(boost::asio::read(socket, boost::asio::buffer(answer), error), 0U);
    EXPECT_TRUE(error.failed());
  }
  EXPECT_TRUE(socketMachine(path).smc->open().has_value());
}

TEST(SimulatedSocket, ClientThatLeavesInTheMiddleOfAFrameIsForgotten) {
  const std::string path = socketPath();
  ServedMachine served("mac-mini", path);
  {
    boost::asio::io_context context;
    Protocol::socket socket(context);
    socket.connect(Protocol::endpoint(path));
    boost::asio::write(socket, boost::asio::buffer(std::array<std::uint8_t, 5>{85, 0, 0, 0, 3}));
  }
  EXPECT_TRUE(socketMachine(path).smc->open().has_value());
}

/// Accepts one client and answers its first request with `bytes`, whatever it was.
class FalseSimulator {
public:
  FalseSimulator(const std::string& path, std::vector<std::uint8_t> bytes)
      : path_(path), acceptor_(context_, Protocol::endpoint(path)), thread_([this, bytes] {
          Protocol::socket client = acceptor_.accept();
          std::array<std::uint8_t, 5> request{};
          boost::system::error_code ignored;
          boost::asio::read(client, boost::asio::buffer(request), ignored);
          boost::asio::write(client, boost::asio::buffer(bytes), ignored);
        }) {}
  ~FalseSimulator() {
    thread_.join();
    std::filesystem::remove(path_);
  }

private:
  std::string path_;
  boost::asio::io_context context_;
  Protocol::acceptor acceptor_;
  std::thread thread_;
};

TEST(SimulatedSocket, HostileRepliesAreAFailedOpening) {
  const std::vector<std::vector<std::uint8_t>> hostile{
      {255, 255, 255, 255},                    // A reply of four gigabytes.
      {8, 0, 0, 0, 0, 0},                      // One that stops in the middle.
      {4, 0, 0, 0, 0, 0, 0, 0},                // One without a connection.
      {0, 0, 0, 0},                            // An empty one.
      {},                                      // None.
      {9, 0, 0, 0, 0, 0, 0, 0, 1, 0, 0, 0, 0}, // One byte too many.
  };
  const std::string path = socketPath();
  for (const auto& bytes : hostile) {
    FalseSimulator simulator(path, bytes);
    EXPECT_FALSE(socketMachine(path).smc->open().has_value());
  }
}

} // namespace
} // namespace ventolith::simulated
