#include "app/UpdateController.h"

#include "support/VirtualTime.h"

#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace ventolith::app {
namespace {

using Outcome = UpdateCheckOutcome;

struct SilentUpdateEngine final : UpdateEngine {
  void checkForUpdates() override {}
};

MapBundleInfo::Values settings() {
  return {{"SUFeedURL", std::string("https://updates.example.com/feed.xml")},
          {"SUPublicEDKey", std::string("AAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAA=")}};
}

MapBundleInfo::Values settingsFor(const std::string& channel) {
  auto values = settings();
  values.insert_or_assign("AppUpdateChannel", channel);
  return values;
}

class UpdateControllerTest : public testing::Test {
protected:
  /// A controller of a build with `values`; a factory without an engine gives none.
  [[nodiscard]] UpdateController controllerOf(MapBundleInfo::Values values) {
    return UpdateController(
        time_.executor(), MapBundleInfo(std::move(values)),
        [this](const UpdateFeedConfiguration& configuration, std::shared_ptr<UpdateEngineDelegate> delegate) {
          received_ = configuration;
          delegate_ = delegate;
          return std::exchange(engine_, nullptr);
        });
  }

  /// What the controller tells from now on.
  void listen(UpdateController& controller) {
    controller.setOnOutcome([this](Outcome outcome) { told_.push_back(std::move(outcome)); });
  }
  void settle() { time_.clock.settle(); }

  support::VirtualTime time_;
  std::unique_ptr<UpdateEngine> engine_ = std::make_unique<SilentUpdateEngine>();
  std::optional<UpdateFeedConfiguration> received_;
  std::weak_ptr<UpdateEngineDelegate> delegate_;
  std::vector<Outcome> told_;
};

TEST_F(UpdateControllerTest, TheEngineIsMadeForTheSettingsOfTheBuild) {
  const auto controller = controllerOf(settingsFor("beta"));
  ASSERT_TRUE(received_);
  EXPECT_EQ(received_->feedURL(), "https://updates.example.com/feed.xml");
  EXPECT_EQ(received_->publicKey(), "AAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAA=");
  EXPECT_EQ(received_->channel(), UpdateChannel::beta);
}

TEST_F(UpdateControllerTest, TheDelegateOffersTheChannelOfTheBuild) {
  const auto beta = controllerOf(settingsFor("beta"));
  EXPECT_EQ(delegate_.lock()->allowedChannels(), std::set<std::string>{"beta"});
}

TEST_F(UpdateControllerTest, TheDelegateOfAStableBuildOffersNothingMore) {
  const auto stable = controllerOf(settings());
  EXPECT_EQ(delegate_.lock()->allowedChannels(), std::set<std::string>());
}

TEST_F(UpdateControllerTest, WithAnEngineThereIsNoReasonAgainstUpdates) {
  const auto controller = controllerOf(settings());
  EXPECT_TRUE(controller.isAvailable());
  EXPECT_EQ(controller.unavailableReason(), std::nullopt);
}

TEST_F(UpdateControllerTest, WithoutSettingsNoEngineIsAskedFor) {
  auto controller = controllerOf({});
  EXPECT_FALSE(received_);
  EXPECT_FALSE(controller.isAvailable());
  EXPECT_EQ(controller.unavailableReason(), "Updates are not configured in this build.");
}

TEST_F(UpdateControllerTest, WhereTheFactoryGivesNoneThereAreNoUpdates) {
  engine_ = nullptr;
  auto controller = controllerOf(settings());
  EXPECT_TRUE(received_);
  EXPECT_FALSE(controller.isAvailable());
  EXPECT_EQ(controller.unavailableReason(), "Updates are not configured in this build.");
  EXPECT_TRUE(delegate_.expired());
  controller.checkForUpdates();
  listen(controller);
}

TEST_F(UpdateControllerTest, WhatWasToldBeforeAHandlerWasSetIsNotForIt) {
  auto controller = controllerOf(settings());
  const auto delegate = delegate_.lock();
  listen(controller);
  delegate->didFindValidUpdate("1.0");
  listen(controller);
  delegate->didFindValidUpdate("2.0");
  settle();
  EXPECT_EQ(told_, std::vector{Outcome::updateAvailable("2.0")});
}

TEST_F(UpdateControllerTest, AHandlerIsToldEverythingUntilItIsTakenAway) {
  auto controller = controllerOf(settings());
  const auto delegate = delegate_.lock();
  listen(controller);
  delegate->didFindValidUpdate("1.0");
  delegate->didFinishUpdateCycle(std::nullopt);
  delegate->didNotFindUpdate();
  settle();
  EXPECT_EQ(told_, (std::vector{Outcome::updateAvailable("1.0"), Outcome::upToDate}));

  delegate->didNotFindUpdate();
  controller.setOnOutcome(nullptr);
  settle();
  EXPECT_EQ(told_.size(), 2U);
}

TEST(OutcomeForAbort, ToldFromTheErrorAndFromItsCause) {
  const auto underlying = [](PlatformError error) {
    return PlatformError{.domain = "Outer",
                         .code = 1,
                         .description = "outer",
                         .underlying = std::make_shared<const PlatformError>(std::move(error))};
  };
  const PlatformError urlCancelled{.domain = "NSURLErrorDomain", .code = -999};
  const PlatformError userCancelled{.domain = "NSCocoaErrorDomain", .code = 3072};
  const PlatformError task{.domain = "x", .code = 1, .isTaskCancellation = true};

  EXPECT_EQ(outcomeForAbort({.domain = "SUSparkleErrorDomain", .code = 1001}), Outcome::upToDate);
  EXPECT_EQ(outcomeForAbort({.domain = "SUSparkleErrorDomain", .code = 4007}), Outcome::cancelled);
  EXPECT_EQ(outcomeForAbort(urlCancelled), Outcome::cancelled);
  EXPECT_EQ(outcomeForAbort(userCancelled), Outcome::cancelled);
  EXPECT_EQ(outcomeForAbort(task), Outcome::cancelled);
  EXPECT_EQ(outcomeForAbort(underlying(urlCancelled)), Outcome::cancelled);
  EXPECT_EQ(outcomeForAbort(underlying(userCancelled)), Outcome::cancelled);

  EXPECT_EQ(outcomeForAbort(underlying(underlying(urlCancelled))), Outcome::failed("outer"));
  EXPECT_EQ(outcomeForAbort(underlying(task)), Outcome::failed("outer"));
  EXPECT_EQ(outcomeForAbort(underlying({.domain = "SUSparkleErrorDomain", .code = 4007})),
            Outcome::failed("outer"));
  EXPECT_EQ(outcomeForAbort({.domain = "NSCocoaErrorDomain", .code = -999, .description = "d"}),
            Outcome::failed("d"));
  EXPECT_EQ(outcomeForAbort({.domain = "NSURLErrorDomain", .code = 1001, .description = "d"}),
            Outcome::failed("d"));
}

} // namespace
} // namespace ventolith::app
