// The program's surroundings in memory: a machine of keys, outputs that remember, time that is told.
#pragma once

#include "hardware/SMCUserClient.h"
#include "programs/ventolithctl/CommandLine.h"
#include "runtime/ManualClock.h"

#include <gtest/gtest.h>

#include <boost/asio/io_context.hpp>

#include <filesystem>
#include <fstream>
#include <map>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

namespace ventolith::ctl {

/// Remembers what is written. Written over are the lines of a terminal, if it is told to be one.
struct TextOutput final : Output {
  std::string text;
  bool terminal = false;
  TextSize extent;
  ColorDepth depth = ColorDepth::none;
  bool ready = true;
  std::function<void()> onFlush = [] {};

  void write(std::string_view more) override { text += more; }
  void flush() override { onFlush(); }
  [[nodiscard]] bool isReady() const override { return ready; }
  [[nodiscard]] bool isTerminal() const override { return terminal; }
  [[nodiscard]] TextSize size() const override { return extent; }
  [[nodiscard]] ColorDepth colors() const override { return depth; }
};

/// The values of an SMC's keys, each read as a 32-bit float.
using Keys = std::map<std::string, double>;

/// Answers queries about the keys, which the test may change at any time.
class KeyedClient final : public hardware::SMCUserClient {
public:
  explicit KeyedClient(std::shared_ptr<Keys> keys) : keys_(std::move(keys)) {}

  hardware::SMCResult<hardware::IOConnect> open() override { return hardware::IOConnect{1}; }
  void close(hardware::IOConnect) override {}
  hardware::KernReturn call(hardware::IOConnect, const hardware::SMCParamStruct& input,
                            hardware::SMCParamStruct& output) override;

private:
  std::shared_ptr<Keys> keys_;
};

/// A hub that is not there: temperatures come from the keys.
struct AbsentHub final : hardware::HIDBridge {
  [[nodiscard]] bool isAvailable() const override { return false; }
  [[nodiscard]] std::optional<Discovery> discoverLabeledTemperatureServices() override {
    return std::nullopt;
  }
  [[nodiscard]] std::optional<double> sampleTemperature(const Service&) override { return std::nullopt; }
};

class CommandTest : public ::testing::Test {
protected:
  CommandTest();
  ~CommandTest() override;

  /// Runs the program with `arguments` to its end, in virtual time.
  ExitStatus run(std::vector<std::string> arguments);

  /// A file in this test's own folder; its path.
  std::string file(const std::string& name, const std::string& content) const;
  [[nodiscard]] std::string path(const std::string& name) const { return (folder_ / name).string(); }

  static std::string contentOf(const std::string& path);
  static std::vector<std::string> linesOf(const std::string& text);

  boost::asio::io_context executor;
  runtime::ManualClock clock{executor};
  runtime::StopSource stop;
  std::shared_ptr<Keys> keys; // Two fans and three sensors.
  std::istringstream in;
  TextOutput out;
  TextOutput err;
  helper::ProcessWideCounter upgradeAttempts;
  Context context;

private:
  std::filesystem::path folder_;
};

/// A plan of the given lists, with the usual tuning.
std::string planText(const std::string& fans, const std::string& rules = "");

} // namespace ventolith::ctl
