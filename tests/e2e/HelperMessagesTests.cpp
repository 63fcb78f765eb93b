// The ten messages as somebody else's program sends them, to the helper as it runs.
#include "e2e/HelperHouse.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <future>
#include <limits>
#include <random>

namespace ventolith::e2e {
namespace {

using Bytes = std::vector<std::uint8_t>;

constexpr std::int64_t applied = 0;
constexpr std::int64_t failed = 7;

class RunningHelper : public testing::Test {
protected:
  HelperHouse house_;
  std::unique_ptr<Program> helper_ = house_.startHelper();
  Peer peer_{house_.bus().address()};
};

Bytes bytesOf(const std::string& text) {
  return {text.begin(), text.end()};
}

/// One call by systemd's own bus client.
Ended busctl(HelperHouse& house, const std::string& method, const std::vector<std::string>& arguments = {}) {
  std::vector<std::string> all = {
      "--address=" + house.bus().address(), "call", "com.ventolith.helper", "/com/ventolith/helper",
      "com.ventolith.FanHelperProtocol",    method};
  all.insert(all.end(), arguments.begin(), arguments.end());
  return run("/usr/bin/busctl", std::move(all));
}

TEST_F(RunningHelper, AnswersEachOfTheTenMessagesToAForeignClient) {
  const auto plan = bytesOf(readText(house_.plan({{0, 3000}})));
  std::vector<std::string> body = {"ay", std::to_string(plan.size())};
  for (const std::uint8_t byte : plan)
    body.push_back(std::to_string(byte));

  struct Call {
    std::string method;
    std::vector<std::string> arguments;
    std::string reply; // The beginning of it.
  };
  const std::string build = run("ventolith-helper", {"--version"}).out;
  const std::vector<Call> calls = {
      {"HelperVersion", {}, "s \"" + build.substr(0, build.find('\n')) + "\"\n"},
      {"SetManualRPM", {"xx", "0", "3000"}, "x 0\n"},
      {"SetPercent", {"xd", "1", "50"}, "x 0\n"},
      {"FullBlast", {}, "x 0\n"},
      {"ApplyConfig", body, "x 0\n"},
      {"Heartbeat", {}, ""},
      {"ReadState", {}, "ay "},
      {"Automatic", {}, "x 0\n"},
      {"RestoreAuto", {}, ""},
      {"ShutdownForUpgrade", {}, ""},
  };
  for (const Call& call : calls) {
    const Ended ended = busctl(house_, call.method, call.arguments);
    EXPECT_EQ(ended.status, 0) << call.method << ": " << ended.err;
    EXPECT_EQ(ended.out.substr(0, call.reply.size()), call.reply) << call.method;
  }
  EXPECT_EQ(helper_->wait().status, 0);
}

TEST_F(RunningHelper, FollowsEachCommandOfAForeignClient) {
  EXPECT_EQ(peer_.call<std::int64_t>("SetManualRPM", std::int64_t{0}, std::int64_t{3000}), applied);
  EXPECT_EQ(house_.mac().lastWrite("F0Md"), "01");
  EXPECT_EQ(house_.mac().lastWrite("F0Tg"), "00803b45");
  EXPECT_EQ(peer_.state().at("isHolding"), true);

  EXPECT_EQ(peer_.call<std::int64_t>("SetPercent", std::int64_t{1}, 100.0), applied);
  EXPECT_EQ(house_.mac().lastWrite("F1Md"), "01");

  EXPECT_EQ(peer_.call<std::int64_t>("Automatic"), applied);
  EXPECT_TRUE(house_.isEveryFanBack());
  EXPECT_EQ(peer_.state().at("isHolding"), false);

  EXPECT_EQ(peer_.call<std::int64_t>("FullBlast"), applied);
  EXPECT_TRUE(house_.isEveryFanHeld());
  peer_.callForNothing("RestoreAuto");
  EXPECT_TRUE(house_.isEveryFanBack());
}

TEST_F(RunningHelper, AnswersAPlanThatIsNoneWithACodeAndLeavesTheFansAlone) {
  std::mt19937 random(1);
  const auto before = house_.mac().journal().size();
  for (int length = 0; length < 64; ++length) {
    Bytes body(static_cast<std::size_t>(length));
    std::ranges::generate(body, [&] { return static_cast<std::uint8_t>(random() & 0xff); });
    EXPECT_EQ(peer_.call<std::int64_t>("ApplyConfig", body), failed) << length;
  }
  for (const std::string text : {"[]", "{}", "null", R"({"fans":[{}]})", R"({"fans":1e999})"})
    EXPECT_EQ(peer_.call<std::int64_t>("ApplyConfig", bytesOf(text)), failed) << text;
  EXPECT_EQ(peer_.call<std::int64_t>("ApplyConfig", Bytes(100'000, '[')), failed);
  EXPECT_EQ(house_.mac().journal().size(), before);
}

TEST_F(RunningHelper, RefusesABodyOfTwoMegabytesAndGoesOn) {
  const Bytes body(2'000'000, ' ');
  try {
    const auto code = peer_.call<std::int64_t>("ApplyConfig", body);
    ADD_FAILURE() << "was answered with " << code;
  } catch (const sdbus::Error& error) {
    EXPECT_EQ(error.getName(), "org.freedesktop.DBus.Error.InvalidArgs");
  }
  EXPECT_EQ(peer_.call<std::int64_t>("SetManualRPM", std::int64_t{0}, std::int64_t{3000}), applied);
}

TEST_F(RunningHelper, SurvivesNumbersThatNoFanHas) {
  for (const std::int64_t fan : {std::numeric_limits<std::int64_t>::min(), std::int64_t{-1}, std::int64_t{99},
                                 std::numeric_limits<std::int64_t>::max()}) {
    EXPECT_NE(peer_.call<std::int64_t>("SetManualRPM", fan, std::int64_t{3000}), applied) << fan;
    EXPECT_NE(peer_.call<std::int64_t>("SetPercent", fan, 50.0), applied) << fan;
  }
  for (const double percent :
       {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity()})
    EXPECT_EQ(peer_.call<std::int64_t>("SetPercent", std::int64_t{0}, percent), failed) << percent;
  EXPECT_EQ(peer_.call<std::int64_t>("Automatic"), applied);
  EXPECT_FALSE(house_.waitForHelper().empty());
}

TEST_F(RunningHelper, AnswersAThousandCallsInFlight) {
  constexpr int clients = 40;
  constexpr int callsOfEach = 25; // Fewer than one client may have unanswered.
  std::vector<std::unique_ptr<Peer>> peers;
  std::vector<std::future<std::string>> answers;
  for (int client = 0; client < clients; ++client)
    peers.push_back(std::make_unique<Peer>(house_.bus().address()));
  for (int round = 0; round < callsOfEach; ++round) {
    for (const auto& peer : peers) {
      auto answer = std::make_shared<std::promise<std::string>>();
      answers.push_back(answer->get_future());
      peer->proxy()
          .callMethodAsync("HelperVersion")
          .onInterface(Peer::interfaceName)
          .withTimeout(Peer::timeout)
          .uponReplyInvoke([answer](const sdbus::Error* error, const std::string& version) {
            answer->set_value(error == nullptr ? version : error->getName());
          });
    }
  }
  const std::string build = house_.waitForHelper();
  EXPECT_EQ(answers.size(), 1000u);
  for (auto& answer : answers) {
    ASSERT_EQ(answer.wait_for(Peer::timeout), std::future_status::ready);
    ASSERT_EQ(answer.get(), build);
  }
}

TEST_F(RunningHelper, AnswersAThousandCommandsOfOneClientOrSaysThatTheyAreTooMany) {
  std::vector<std::future<std::string>> answers;
  for (int call = 0; call < 1000; ++call) {
    auto answer = std::make_shared<std::promise<std::string>>();
    answers.push_back(answer->get_future());
    peer_.proxy()
        .callMethodAsync("SetManualRPM")
        .onInterface(Peer::interfaceName)
        .withTimeout(Peer::timeout)
        .withArguments(std::int64_t{0}, std::int64_t{2000 + call})
        .uponReplyInvoke([answer](const sdbus::Error* error, std::int64_t code) {
          answer->set_value(error == nullptr ? std::to_string(code) : error->getName());
        });
  }
  std::map<std::string, int> count;
  for (auto& answer : answers) {
    ASSERT_EQ(answer.wait_for(Peer::timeout), std::future_status::ready);
    ++count[answer.get()];
  }
  EXPECT_GE(count["0"], 1);
  EXPECT_EQ(count["0"] + count["org.freedesktop.DBus.Error.LimitsExceeded"], 1000);
  EXPECT_EQ(peer_.call<std::int64_t>("Automatic"), applied);
  EXPECT_TRUE(house_.isEveryFanBack());
}

TEST_F(RunningHelper, TheLastPlanOfTwoClientsWinsAndTheOtherSeesIt) {
  const Peer other(house_.bus().address());
  EXPECT_EQ(peer_.call<std::int64_t>("SetManualRPM", std::int64_t{0}, std::int64_t{3000}), applied);
  EXPECT_EQ(other.call<std::int64_t>("SetManualRPM", std::int64_t{0}, std::int64_t{4000}), applied);
  EXPECT_EQ(peer_.state(), other.state());
  EXPECT_EQ(peer_.state().at("targets"), (nlohmann::json{{"0", 4000}}));

  EXPECT_EQ(peer_.call<std::int64_t>("Automatic"), applied);
  EXPECT_EQ(other.state().at("isHolding"), false);
}

} // namespace
} // namespace ventolith::e2e
