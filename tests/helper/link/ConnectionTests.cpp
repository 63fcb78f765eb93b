// How XPCFanController opens and replaces its connection.
#include "helper/link/LinkFixture.h"

namespace ventolith::helper {
namespace {

/// Remembers its handlers for the test to call, and answers nothing.
class BareChannel final : public HelperChannel {
public:
  struct Record {
    Handlers handlers;
    int calls = 0;
    int sends = 0;
    bool isInvalidated = false;
    std::function<void(const Handlers&)> whenResumed = [](const Handlers&) {};
    /// What a call does before it ends without a reply.
    std::function<void(const Handlers&)> whenUsed = [](const Handlers&) {};
  };

  explicit BareChannel(std::shared_ptr<Record> record) : record_(std::move(record)) {}

  void resume(Handlers handlers) override {
    record_->handlers = std::move(handlers);
    record_->whenResumed(record_->handlers);
  }
  Async<std::optional<HelperReply>> call(HelperMessage) override {
    ++record_->calls;
    record_->whenUsed(record_->handlers);
    co_return std::nullopt;
  }
  void send(HelperMessage) override {
    ++record_->sends;
    record_->whenUsed(record_->handlers);
  }
  void invalidate() override { record_->isInvalidated = true; }

private:
  std::shared_ptr<Record> record_;
};

class ConnectionTest : public LinkTest {
protected:
  /// At its first use: so does a channel to an absent bus.
  static void breakForGood(const HelperChannel::Handlers& handlers) { handlers.invalidated(); }

  Controller makeBareController() {
    auto channels = [this] {
      bare.push_back(std::make_shared<BareChannel::Record>());
      bare.back()->whenUsed = whenUsed;
      bare.back()->whenResumed = whenResumed;
      return std::make_unique<BareChannel>(bare.back());
    };
    auto controller = XPCFanController::make(time.executor(), time.executor(), time.clock, channels,
                                             {.ownBuildVersion = ownBuild}, attempts);
    time.clock.settle();
    return controller;
  }

  std::function<void(const HelperChannel::Handlers&)> whenUsed = [](const HelperChannel::Handlers&) {};
  std::function<void(const HelperChannel::Handlers&)> whenResumed = [](const HelperChannel::Handlers&) {};
  std::vector<std::shared_ptr<BareChannel::Record>> bare;
};

TEST_F(ConnectionTest, OpensOneAndChecksItWithoutACommand) {
  bringUp();
  const auto controller = makeController();
  EXPECT_EQ(link.channelsMade(), 1U);
  EXPECT_EQ(helper.log(), (Log{"HelperVersion"}));
}

TEST_F(ConnectionTest, AnInterruptionKeepsItAndLeadsToACheckAtTheNextCommand) {
  const auto controller = makeConnectedController();
  restart();
  pass(60);
  EXPECT_EQ(helper.log(), Log()); // The check awaits a command.
  EXPECT_EQ(run(controller->automatic()), ControlResult::applied);
  EXPECT_EQ(helper.log(), (Log{"HelperVersion", "Automatic"}));
  EXPECT_EQ(link.channelsMade(), 1U);
}

TEST_F(ConnectionTest, AHandlerReplacesNothing) {
  const auto controller = makeConnectedController();
  link.breakChannels();
  pass(60);
  EXPECT_EQ(link.channelsMade(), 1U);
  EXPECT_EQ(helper.log(), Log());
}

TEST_F(ConnectionTest, ACommandReplacesABrokenOneAndChecksOnce) {
  const auto controller = makeConnectedController();
  link.breakChannels();
  time.clock.settle();
  EXPECT_EQ(run(controller->automatic()), ControlResult::applied);
  pass(10);
  EXPECT_EQ(link.channelsMade(), 2U);
  EXPECT_EQ(helper.log(), (Log{"HelperVersion", "Automatic"}));
}

TEST_F(ConnectionTest, AHeartbeatReplacesABrokenOneAndChecksOnce) {
  const auto controller = makeConnectedController();
  link.breakChannels();
  time.clock.settle();
  run(controller->heartbeat());
  pass(10);
  EXPECT_EQ(link.channelsMade(), 2U);
  EXPECT_EQ(helper.log(), (Log{"Heartbeat", "HelperVersion"}));
}

TEST_F(ConnectionTest, RestoreAutoReplacesABrokenOne) {
  const auto controller = makeConnectedController();
  link.breakChannels();
  time.clock.settle();
  run(controller->restoreAuto());
  EXPECT_EQ(link.channelsMade(), 2U);
  EXPECT_EQ(helper.count("RestoreAuto"), 1);
}

TEST_F(ConnectionTest, APollReplacesABrokenOneAndChecksOnce) {
  const auto controller = makeConnectedController();
  run(controller->fullBlast());
  time.clock.settle();
  helper.messages.clear();
  link.breakChannels();
  pass(4);
  EXPECT_EQ(link.channelsMade(), 2U);
  EXPECT_EQ(helper.count("ReadState"), 2);
  EXPECT_EQ(helper.count("HelperVersion"), 1);
}

TEST_F(ConnectionTest, ACallOnOneThatBreaksEndsWithNoHelper) {
  const auto controller = makeConnectedController();
  helper.hold("FullBlast");
  const auto result = begin(controller->fullBlast());
  link.breakChannels();
  time.clock.settle();
  EXPECT_EQ(*result, ControlResult::noHelper);
}

TEST_F(ConnectionTest, TheReplacedOneIsInvalidated) {
  const auto controller = makeBareController();
  bare[0]->handlers.invalidated();
  time.clock.settle();
  run(controller->automatic());
  ASSERT_EQ(bare.size(), 2U);
  EXPECT_TRUE(bare[0]->isInvalidated);
  EXPECT_FALSE(bare[1]->isInvalidated);
}

TEST_F(ConnectionTest, LateHandlersOfAReplacedOneDoNotMarkTheNewOne) {
  const auto controller = makeBareController();
  bare[0]->handlers.invalidated();
  time.clock.settle();
  run(controller->automatic());
  time.clock.settle();
  const int calls = bare[1]->calls;
  bare[0]->handlers.invalidated();
  bare[0]->handlers.interrupted();
  time.clock.settle();
  run(controller->automatic());
  EXPECT_EQ(bare.size(), 2U);
  EXPECT_EQ(bare[1]->calls, calls + 1); // The command alone, without a check.
}

TEST_F(ConnectionTest, AHandlerThatWasPostedBeforeTheReplacementDoesNotMarkTheNewOne) {
  const auto controller = makeBareController();
  bare[0]->handlers.invalidated();
  time.clock.settle();
  const auto replacing = [&]() -> Async<void> {
    bare[0]->handlers.invalidated(); // Arrives behind the command, which replaces the connection.
    co_await controller->automatic();
  };
  run(replacing());
  run(controller->automatic());
  EXPECT_EQ(bare.size(), 2U);
}

TEST_F(ConnectionTest, HandlersThatOutliveTheControllerDoNothing) {
  auto controller = makeBareController();
  controller.reset();
  EXPECT_TRUE(bare[0]->isInvalidated);
  bare[0]->handlers.invalidated();
  bare[0]->handlers.interrupted();
  time.clock.settle();
  EXPECT_EQ(bare.size(), 1U);
}

TEST_F(ConnectionTest, OneThatCannotBeOpenedIsNotReplacedWithoutANeed) {
  whenUsed = breakForGood;
  const auto controller = makeBareController();
  pass(3600);
  EXPECT_EQ(bare.size(), 1U);
}

TEST_F(ConnectionTest, OneThatBreaksAsItIsOpenedIsNotReplacedWithoutANeed) {
  whenResumed = breakForGood;
  const auto controller = makeBareController();
  pass(3600);
  EXPECT_EQ(bare.size(), 1U);
}

TEST_F(ConnectionTest, EachUseWithoutABusOpensAFewAtTheMost) {
  whenUsed = breakForGood;
  const auto controller = makeBareController();
  for (int time = 0; time < 10; ++time) {
    const std::size_t before = bare.size();
    EXPECT_EQ(run(controller->automatic()), ControlResult::noHelper);
    pass(10);
    EXPECT_LE(bare.size() - before, 2U); // One for the check, one for the command.
  }
}

TEST_F(ConnectionTest, HeartbeatsWithoutABusOpenOneEach) {
  whenUsed = breakForGood;
  const auto controller = makeBareController();
  for (std::size_t count = 1; count <= 10; ++count) {
    run(controller->heartbeat());
    pass(1);
    EXPECT_EQ(bare.size(), 1 + count);
  }
}

TEST_F(ConnectionTest, ABusThatComesLateIsFoundAndTheHelperChecked) {
  bringUp();
  link.setReachable(false);
  const auto controller = makeController();
  EXPECT_EQ(run(controller->automatic()), ControlResult::noHelper);
  EXPECT_EQ(helper.log(), Log());
  link.setReachable(true);
  EXPECT_EQ(run(controller->automatic()), ControlResult::applied);
  EXPECT_EQ(helper.log(), (Log{"HelperVersion", "Automatic"}));
}

} // namespace
} // namespace ventolith::helper
