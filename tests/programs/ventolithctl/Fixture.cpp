#include "programs/ventolithctl/Fixture.h"

#include <fmt/format.h>

#include <iterator>
#include <unistd.h>

namespace ventolith::ctl {

using hardware::SMCParamStruct;

namespace {

constexpr hardware::KernReturn badArgument = -1;

struct MayNot final : hardware::Privileges {
  [[nodiscard]] bool mayControlFans() const override { return false; }
};

void answer(const Keys& keys, const SMCParamStruct& input, SMCParamStruct& output) {
  const auto key = hardware::unpackKey(input.key);
  const auto found = keys.find(key);
  if (key != "#KEY" && found == keys.end()) {
    output.result = static_cast<std::uint8_t>(SMCParamStruct::ResultCode::keyNotFound);
    return;
  }
  output.keyInfo.dataSize = 4;
  output.keyInfo.dataType = hardware::packKey(key == "#KEY" ? "ui32" : "flt ");
  if (key == "#KEY")
    output.bytes[3] = static_cast<std::uint8_t>(keys.size());
  else
    output.bytes = hardware::encodeFloat(found->second);
}

} // namespace

hardware::KernReturn KeyedClient::call(hardware::IOConnect, const SMCParamStruct& input,
                                       SMCParamStruct& output) {
  if (input.data8 == static_cast<std::uint8_t>(SMCParamStruct::Selector::writeKey)) return badArgument;
  if (input.data8 != static_cast<std::uint8_t>(SMCParamStruct::Selector::getKeyByIndex)) {
    answer(*keys_, input, output);
    return hardware::kernSuccess;
  }
  output.key = hardware::packKey(std::next(keys_->begin(), static_cast<std::ptrdiff_t>(input.data32))->first);
  return hardware::kernSuccess;
}

CommandTest::CommandTest()
    : keys(std::make_shared<Keys>(Keys{{"FNum", 2},
                                       {"F0Ac", 2317},
                                       {"F0Mn", 2000},
                                       {"F0Mx", 8000},
                                       {"F0Md", 0},
                                       {"F1Ac", 5000},
                                       {"F1Mn", 2000},
                                       {"F1Mx", 8000},
                                       {"F1Md", 1},
                                       {"TCHP", 61.5},
                                       {"TG0D", 48.25},
                                       {"TB0T", 30}})),
      context{.in = in,
              .out = out,
              .err = err,
              .clock = clock,
              .stop = stop.token(),
              .selectMachine =
                  [this] {
                    return hardware::Machine{.name = "test machine",
                                             .smc = std::make_unique<KeyedClient>(keys),
                                             .hid = std::make_unique<AbsentHub>(),
                                             .privileges = std::make_unique<MayNot>()};
                  },
              .upgradeAttempts = upgradeAttempts} {
  const auto* test = ::testing::UnitTest::GetInstance()->current_test_info();
  folder_ = std::filesystem::path(::testing::TempDir()) /
            fmt::format("ventolithctl-{}-{}-{}", getpid(), test->test_suite_name(), test->name());
  std::filesystem::create_directories(folder_);
}

CommandTest::~CommandTest() {
  std::filesystem::remove_all(folder_);
}

ExitStatus CommandTest::run(std::vector<std::string> arguments) {
  return clock.run(runCommandLine(std::move(arguments), context));
}

std::string CommandTest::file(const std::string& name, const std::string& content) const {
  std::ofstream(folder_ / name, std::ios::binary) << content;
  return path(name);
}

std::string CommandTest::contentOf(const std::string& path) {
  std::ifstream stream(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

std::vector<std::string> CommandTest::linesOf(const std::string& text) {
  std::istringstream stream(text);
  std::vector<std::string> lines;
  for (std::string line; std::getline(stream, line);)
    lines.push_back(line);
  return lines;
}

std::string planText(const std::string& fans, const std::string& rules) {
  return fmt::format(
      R"({{"fans":[{}],"rules":[{}],"tuning":)"
      R"({{"emaAlpha":1,"hysteresisCelsius":2,"maxDeltaRPMPerTick":400,"minDwellSeconds":3}}}})",
      fans, rules);
}

} // namespace ventolith::ctl
