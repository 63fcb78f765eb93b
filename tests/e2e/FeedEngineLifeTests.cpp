// How the update engine begins, tells and goes, against a real web server.
#include "e2e/FeedEngineFixture.h"

#include <boost/asio/executor_work_guard.hpp>
#include <boost/asio/io_context.hpp>
#include <fmt/format.h>

#include <filesystem>
#include <iterator>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace ventolith::e2e {

namespace {

using namespace std::chrono_literals;
using Kind = WebAnswer::Kind;
namespace fs = std::filesystem;

/// Writes down what it is told.
class RecordingDelegate final : public app::UpdateEngineDelegate {
public:
  [[nodiscard]] std::set<std::string> allowedChannels() const override { return {}; }
  void didFindValidUpdate(std::string displayVersion) override { told.push_back("found " + displayVersion); }
  void didNotFindUpdate() override { told.emplace_back("none"); }
  void didAbort(app::PlatformError error) override { told.push_back("aborted " + error.domain); }
  void didFinishUpdateCycle(std::optional<app::PlatformError> error) override {
    told.push_back(error ? fmt::format("ended {} {}", error->domain, error->code) : "ended");
  }

  std::vector<std::string> told;
};

class FeedEngineLife : public FeedEngine {
protected:
  std::unique_ptr<app::UpdateEngine> engine() {
    const auto configuration =
        app::UpdateFeedConfiguration::make({.feedURL = feedURL, .publicKey = publisher.publicKey()});
    return platform::feedUpdateEngines(settings())(*configuration, delegate);
  }
  std::vector<std::string> told(app::UpdateEngine& by) {
    delegate->told.clear();
    by.checkForUpdates();
    loops.until("the end of the cycle",
                [&] { return !delegate->told.empty() && delegate->told.back().starts_with("ended"); });
    return delegate->told;
  }
  [[nodiscard]] static std::size_t openDescriptors() {
    return static_cast<std::size_t>(
        std::distance(fs::directory_iterator("/proc/self/fd"), fs::directory_iterator()));
  }

  std::shared_ptr<RecordingDelegate> delegate = std::make_shared<RecordingDelegate>();
};

using Told = std::vector<std::string>;

TEST_F(FeedEngineLife, TellsTheOutcomeAndThenTheEnd) {
  const auto engine = this->engine();
  publish(feedOf({{"7", "1.1"}}));
  EXPECT_EQ(told(*engine), (Told{"found 1.1", "ended"}));
  publish(feedOf({}));
  EXPECT_EQ(told(*engine), (Told{"none", "ended"}));
  server.answer(feedPath, {.body = "x"});
  EXPECT_EQ(told(*engine), Told{"ended UpdateFeedErrorDomain 1"});
  publish("x");
  EXPECT_EQ(told(*engine), Told{"ended UpdateFeedErrorDomain 2"});
  server.kill();
  EXPECT_EQ(told(*engine), Told{"ended CURLErrorDomain 7"});
}

TEST_F(FeedEngineLife, ChecksOnlyWhenAsked) {
  publish(feedOf({}));
  const auto engine = this->engine();
  loops.runFor(100ms);
  EXPECT_TRUE(server.log().empty());
  EXPECT_EQ(loops.engineWakeUps(), 0U);
}

TEST_F(FeedEngineLife, AnswersACheckThatIsAskedForWhileOneRunsWithThatOne) {
  publish(feedOf({{"7", "1.1"}}));
  const auto engine = this->engine();
  engine->checkForUpdates();
  loops.until("the request", [&] { return server.count("GET") > 0; });
  EXPECT_EQ(told(*engine), (Told{"found 1.1", "ended"}));
  loops.runFor(50ms);
  EXPECT_EQ(server.count("GET"), 2U);
  EXPECT_EQ(told(*engine), (Told{"found 1.1", "ended"}));
  EXPECT_EQ(server.count("GET"), 4U);
}

TEST_F(FeedEngineLife, GoesInTheMiddleOfACheckAndLeavesNothingBehind) {
  publish(feedOf({}));
  told(*engine()); // What libraries open once and for all is open.
  const std::size_t before = openDescriptors();
  server.answer(feedPath, {.kind = Kind::trickle});
  auto engine = this->engine();
  delegate->told.clear();
  engine->checkForUpdates();
  loops.until("the request", [&] { return server.count("GET /feed.xml |") == 2; });
  EXPECT_GT(openDescriptors(), before);

  engine = nullptr;
  loops.until("the server's log", [&] { return server.count("GONE /feed.xml") == 1; });
  EXPECT_EQ(openDescriptors(), before);
  EXPECT_EQ(delegate.use_count(), 1);
  const std::size_t wakeUps = loops.engineWakeUps();
  loops.runFor(100ms);
  EXPECT_EQ(loops.engineWakeUps(), wakeUps);
  EXPECT_TRUE(delegate->told.empty());
}

TEST_F(FeedEngineLife, GoesBeforeItsCheckHasBegun) {
  auto engine = this->engine();
  engine->checkForUpdates();
  engine = nullptr;
  loops.runFor(50ms);
  EXPECT_TRUE(server.log().empty());
  EXPECT_TRUE(delegate->told.empty());
}

TEST_F(FeedEngineLife, OffersNothingOnceItHasGone) {
  publish(feedOf({{"7", "1.1"}}));
  auto engine = this->engine();
  engine->checkForUpdates();
  // The page is on its way to the main executor, which does not run while the engine's does.
  loops.until("the end of the cycle", [&] {
    if (!delegate->told.empty()) engine = nullptr;
    return engine == nullptr;
  });
  loops.runFor(50ms);
  EXPECT_TRUE(opened.empty());
}

TEST_F(FeedEngineLife, IsLetGoOfWithItsEventLoopAtAnyMoment) {
  publish(feedOf({}));
  server.answer(feedPath, {.kind = Kind::trickle});
  for (int turns = 0; turns < 60; turns += 3) {
    FeedLoops short_;
    auto its = settings();
    platform::FeedUpdateEngineSettings settings{.mainExecutor = short_.mainExecutor(),
                                                .engineExecutor = short_.engineExecutor(),
                                                .clock = short_.clock(),
                                                .running = its.running,
                                                .openPage = its.openPage,
                                                .limits = its.limits,
                                                .authorities = its.authorities};
    const auto engine = platform::feedUpdateEngines(settings)(
        *app::UpdateFeedConfiguration::make({.feedURL = feedURL, .publicKey = publisher.publicKey()}),
        delegate);
    engine->checkForUpdates();
    short_.runFor(std::chrono::milliseconds(turns));
  }
  EXPECT_EQ(delegate.use_count(), 1);
}

TEST_F(FeedEngineLife, KeepsNothingOpenBetweenChecks) {
  publish(feedOf({}));
  const auto engine = this->engine();
  told(*engine);
  const std::size_t before = openDescriptors();
  for (int check = 0; check < 5; ++check)
    told(*engine);
  loops.runFor(20ms);
  EXPECT_EQ(openDescriptors(), before);
}

/// Runs the engine's loop as the program does.
class EngineThread {
public:
  EngineThread() : thread_([this] { context_.run(); }) {}
  EngineThread(const EngineThread&) = delete;
  EngineThread& operator=(const EngineThread&) = delete;
  ~EngineThread() {
    guard_.reset();
    thread_.join();
  }

  [[nodiscard]] runtime::Executor executor() { return context_.get_executor(); }
  [[nodiscard]] runtime::Clock& clock() { return clock_; }

private:
  boost::asio::io_context context_;
  platform::SystemClock clock_{context_.get_executor()};
  boost::asio::executor_work_guard<boost::asio::io_context::executor_type> guard_{context_.get_executor()};
  std::thread thread_;
};

TEST_F(FeedEngineLife, WorksOnAThreadOfItsOwn) {
  publish(feedOf({{"7", "1.1"}}));
  boost::asio::io_context main;
  EngineThread engine;
  for (int presses = 0; presses < 5; ++presses) {
    auto its = settings();
    const platform::FeedUpdateEngineSettings settings{.mainExecutor = main.get_executor(),
                                                      .engineExecutor = engine.executor(),
                                                      .clock = engine.clock(),
                                                      .running = its.running,
                                                      .openPage = its.openPage,
                                                      .limits = its.limits,
                                                      .authorities = its.authorities};
    const app::MapBundleInfo bundle({{"SUFeedURL", feedURL}, {"SUPublicEDKey", publisher.publicKey()}});
    app::UpdateController checks(main.get_executor(), bundle, platform::feedUpdateEngines(settings));
    std::optional<Outcome> outcome;
    checks.setOnOutcome([&](const Outcome& told) { outcome = told; });
    checks.checkForUpdates();
    if (presses % 2 == 1) continue; // Goes at once.
    const auto settle = [&] {
      main.restart();
      main.poll();
    };
    waitUntil("the outcome", [&] {
      settle();
      return outcome.has_value();
    });
    ASSERT_EQ(*outcome, Outcome::updateAvailable("1.1"));
    waitUntil("the offer", [&] {
      settle();
      return !opened.empty();
    });
    opened.clear();
  }
}

} // namespace

} // namespace ventolith::e2e
