#include "programs/ventolithctl/HelperLine.h"

#include "programs/ventolithctl/ControlWords.h"

#include <boost/asio/post.hpp>

namespace ventolith::ctl {

using core::ControlResult;
using helper::HelperChannel;
using helper::HelperMessage;
using helper::HelperReply;
using runtime::Async;

/// Passes everything on, and tells the line of what happens to the channel.
class HelperLine::Channel final : public HelperChannel {
public:
  using Observer = std::function<void()>;

  Channel(std::unique_ptr<HelperChannel> inner, runtime::Executor executor, std::weak_ptr<Observer> observer)
      : inner_(std::move(inner)), executor_(std::move(executor)), observer_(std::move(observer)) {}

  void resume(Handlers handlers) override {
    inner_->resume({.interrupted = telling(std::move(handlers.interrupted)),
                    .invalidated = telling(std::move(handlers.invalidated))});
  }

  Async<std::optional<HelperReply>> call(HelperMessage message) override {
    return inner_->call(std::move(message));
  }
  void send(HelperMessage message) override { inner_->send(std::move(message)); }
  void invalidate() override { inner_->invalidate(); }

private:
  [[nodiscard]] std::function<void()> telling(std::function<void()> handler) const {
    return [executor = executor_, observer = observer_, handler = std::move(handler)] {
      handler();
      boost::asio::post(executor, [observer] {
        if (const auto present = observer.lock()) (*present)();
      });
    };
  }

  std::unique_ptr<HelperChannel> inner_;
  runtime::Executor executor_;
  std::weak_ptr<Observer> observer_;
};

HelperLine::HelperLine(const runtime::Executor& executor, Context& context, OtherBuild otherBuild)
    : context_(context), interrupted_(std::make_shared<std::function<void()>>([] {})) {
  const auto observed = [channels = context.helperChannels(), executor,
                         observer = std::weak_ptr(interrupted_)]() -> std::unique_ptr<HelperChannel> {
    return std::make_unique<Channel>(channels(), executor, observer);
  };
  helper::XPCFanControllerOptions options;
  if (otherBuild == OtherBuild::isLeft) options.maxUpgradeAttempts = 0;
  controller_ = helper::XPCFanController::make(executor, executor, context.clock, observed,
                                               std::move(options), context.upgradeAttempts);
}

Async<std::string> HelperLine::requireBuild() {
  const auto answer =
      co_await within(answerLimit, context_.clock, context_.stop, controller_->readRemoteVersion());
  if (answer && *answer) co_return **answer;
  if (context_.stop.stopRequested())
    throw CommandError(ExitStatus::interrupted, "interrupted before the helper answered");
  if (answer) throw CommandError(ExitStatus::noHelper, reasonText(ControlResult::noHelper));
  throw CommandError(ExitStatus::noHelper,
                     "the helper does not answer; \"ventolithctl helper restart\" starts it again");
}

} // namespace ventolith::ctl
