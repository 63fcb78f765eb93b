#include "programs/ventolithctl/RemoteFixture.h"

#include "core/Visitor.h"

#include <boost/asio/redirect_error.hpp>
#include <boost/asio/steady_timer.hpp>

#include <utility>

namespace ventolith::ctl {

using helper::DaemonStatus;
using helper::HelperAnswer;
using helper::HelperCaller;
using helper::HelperMessage;
using helper::HelperReply;
using runtime::Async;

namespace {

namespace messages = helper::messages;
namespace replies = helper::replies;

Async<void> waitForEver() {
  boost::asio::steady_timer timer(co_await boost::asio::this_coro::executor,
                                  boost::asio::steady_timer::time_point::max());
  boost::system::error_code ignored;
  co_await timer.async_wait(boost::asio::redirect_error(boost::asio::use_awaitable, ignored));
}

class ScriptedRegistration final : public helper::DaemonService {
public:
  explicit ScriptedRegistration(std::shared_ptr<Registration> told) : told_(std::move(told)) {}

  Async<DaemonStatus> status() override {
    if (!told_->answers) co_await waitForEver();
    if (std::exchange(told_->isToOpenSettings, false)) told_->log.emplace_back("settings");
    co_return told_->status;
  }
  Async<ErrorText> registerDaemon() override {
    told_->log.emplace_back("register");
    if (!told_->answers) co_await waitForEver();
    told_->status = told_->statusAfterRegister;
    co_return told_->registerError;
  }
  Async<ErrorText> unregisterDaemon() override {
    told_->log.emplace_back("unregister");
    told_->status = told_->statusAfterUnregister;
    co_return told_->unregistrationError;
  }
  void openSystemSettings() override { told_->isToOpenSettings = true; }

private:
  std::shared_ptr<Registration> told_;
};

} // namespace

std::size_t ScriptedHelper::countOf(std::string_view name) const {
  return timesOf(name).size();
}

std::vector<double> ScriptedHelper::timesOf(std::string_view name) const {
  std::vector<double> times;
  for (const Arrival& arrival : arrivals) {
    if (helper::nameOf(arrival.message) == name) times.push_back(arrival.seconds);
  }
  return times;
}

std::vector<std::string> ScriptedHelper::commands() const {
  std::vector<std::string> names;
  for (const Arrival& arrival : arrivals) {
    if (helper::changesAnything(arrival.message)) names.emplace_back(helper::nameOf(arrival.message));
  }
  return names;
}

Async<HelperAnswer> ScriptedHelper::answer(HelperCaller, HelperMessage message) {
  arrivals.push_back({.seconds = runtime::toSeconds(clock_.now() - start_), .message = message});
  onMessage(message);
  if (unanswered.contains("*") || unanswered.contains(helper::nameOf(message))) co_await waitForEver();
  co_return std::visit(
      core::Visitor{
          [this](const messages::HelperVersion&) -> HelperAnswer {
            return HelperReply(replies::Version{build});
          },
          [](const messages::ShutdownForUpgrade&) -> HelperAnswer { return HelperReply(replies::Done{}); },
          [](const messages::RestoreAuto&) -> HelperAnswer { return HelperReply(replies::Done{}); },
          [](const messages::Heartbeat&) -> HelperAnswer { return std::nullopt; },
          [this](const messages::ReadState&) -> HelperAnswer {
            return HelperReply(replies::State{stateText.value_or(core::encode(state))});
          },
          [this](const auto&) -> HelperAnswer { return HelperReply(replies::Code{result.xpcCode()}); }},
      message);
}

RemoteTest::RemoteTest() {
  context.helperChannels = [this] { return link.channels(); };
  context.daemonService = [this] { return std::make_unique<ScriptedRegistration>(registration); };
  startHelper();
}

RemoteTest::~RemoteTest() {
  clock.settle();
}

void RemoteTest::startHelper() {
  listener_ = link.claimListener();
  listener_->resume(helper, [](const std::string&) {});
}

void RemoteTest::restartHelper(runtime::Duration away) {
  link.killHelper();
  helper.state = core::ControlState::idle;
  at(away, [this] { startHelper(); });
}

void RemoteTest::at(runtime::Duration time, std::function<void()> act) {
  const auto later = [](runtime::Clock& time_, runtime::Duration span,
                        std::function<void()> then) -> Async<void> {
    co_await time_.sleep(span, runtime::StopToken());
    then();
  };
  runtime::start(executor.get_executor(), "test", later(clock, time, std::move(act)));
}

core::ControlState RemoteTest::holding(core::FanID fan, std::int64_t rpm) {
  return {.perFanMode = {{fan, core::ControlMode::manual}},
          .targets = {{fan, rpm}},
          .isHolding = true,
          .lastError = std::nullopt,
          .stoppedFans = std::nullopt};
}

std::string RemoteTest::planFile() const {
  return file("plan.json", planText(R"({"fanID":0,"mode":{"fixedRPM":{"_0":3000}}})"));
}

std::string complaint(const std::string& text) {
  return "ventolithctl: " + text + "\n";
}

} // namespace ventolith::ctl
