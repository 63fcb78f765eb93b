// The update engine among what tests of it need.
#pragma once

#include "e2e/FeedWorld.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

namespace ventolith::app {

// For the messages of failed tests.
inline void PrintTo(const UpdateCheckOutcome& outcome, std::ostream* out) {
  *out << outcome.message();
}

} // namespace ventolith::app

namespace ventolith::e2e {

inline const std::string feedPath = "/feed.xml";
inline const std::string signaturePath = "/feed.xml.sig";

/// The build 6, of version 1.0.3, looks for updates at "https://localhost:.../feed.xml".
class FeedEngine : public testing::Test {
protected:
  using Outcome = app::UpdateCheckOutcome;

  /// Publishes a feed that is in order.
  void publish(const std::string& feed) { publish(server, feed); }
  void publish(WebServer& at, const std::string& feed) {
    at.answer(feedPath, {.body = feed});
    at.answer(signaturePath, {.body = publisher.sign(feed) + "\n"});
  }

  platform::FeedUpdateEngineSettings settings() {
    return {.mainExecutor = loops.mainExecutor(),
            .engineExecutor = loops.engineExecutor(),
            .clock = loops.clock(),
            .running = *app::AppReleaseMetadata::make("1.0.3", "6"),
            .openPage = [this](const std::string& url) { opened.push_back(url); },
            .limits = limits,
            .authorities = authorities};
  }
  void start() {
    const app::MapBundleInfo bundle({{"SUFeedURL", feedURL},
                                     {"SUPublicEDKey", publisher.publicKey()},
                                     {"AppUpdateChannel", channel},
                                     {"AppUpdateAllowInsecureLocalhost", isPlainHTTPAllowed}});
    controller = std::make_unique<app::UpdateController>(loops.mainExecutor(), bundle,
                                                         platform::feedUpdateEngines(settings()));
  }
  /// Begins a check.
  void press() {
    controller->setOnOutcome([this](const Outcome& outcome) { outcomes.push_back(outcome); });
    controller->checkForUpdates();
  }
  /// What the next check comes to; it tells one outcome alone.
  Outcome check() {
    if (!controller) start();
    outcomes.clear();
    press();
    loops.until("the outcome", [&] { return !outcomes.empty(); });
    loops.runFor(std::chrono::milliseconds(20));
    EXPECT_EQ(outcomes.size(), 1U);
    return outcomes.front();
  }
  void expectFailure(const std::string& reason) {
    EXPECT_EQ(check(), Outcome::failed(reason));
    EXPECT_TRUE(opened.empty());
  }

  NoProxies noProxies;
  FeedPublisher publisher;
  WebServer server{testAuthority()};
  FeedLoops loops;
  platform::FeedLimits limits;
  std::optional<std::filesystem::path> authorities = testAuthority().authority();
  std::string feedURL = server.url(feedPath);
  std::string channel = "stable";
  bool isPlainHTTPAllowed = false;
  std::vector<std::string> opened;
  std::vector<Outcome> outcomes;
  std::unique_ptr<app::UpdateController> controller;
};

} // namespace ventolith::e2e
