#include "helper/link/InProcessLink.h"

#include "helper/link/Completion.h"

#include <boost/asio/post.hpp>
#include <fmt/format.h>

#include <algorithm>
#include <deque>
#include <set>
#include <stdexcept>
#include <utility>
#include <vector>

namespace ventolith::helper {

using runtime::Async;

namespace {

using Reply = std::optional<HelperReply>;
using PendingReply = std::shared_ptr<Completion<Reply>>; // None for a message that is sent.

struct Delivery {
  HelperCaller caller;
  HelperMessage message;
  PendingReply reply;
};

void endWithoutReply(const PendingReply& reply) {
  if (reply) reply->complete(std::nullopt);
}

Reply replyIn(HelperAnswer answer) {
  if (!answer) return std::nullopt;
  auto* const reply = std::get_if<HelperReply>(&*answer);
  return reply != nullptr ? Reply(std::move(*reply)) : std::nullopt;
}

/// One end of the helper, from its claim to its death.
struct HelperEnd {
  HelperService* service = nullptr; // None until the listener is resumed.
  std::function<void(std::string)> lost;
  std::set<HelperCaller> watched;
  std::vector<std::pair<HelperCaller, PendingReply>> underWay;
};

struct ChannelEnd {
  HelperCaller caller;
  HelperChannel::Handlers handlers;
  bool isOpen = false;
  bool isGone = false;
};

} // namespace

/// The line itself. What one end does reaches the other in a later turn of the executor, in order.
struct InProcessLink::Hub : std::enable_shared_from_this<Hub> {
  explicit Hub(runtime::Executor itsExecutor) : executor(std::move(itsExecutor)) {}

  void deliver(Delivery delivery) {
    inbox.push_back(std::move(delivery));
    later([](Hub& hub) { hub.handInboxOver(); });
  }

  void handInboxOver() {
    if (helper && helper->service == nullptr) return; // Messages wait for the listener.
    while (!inbox.empty()) {
      Delivery delivery = std::move(inbox.front());
      inbox.pop_front();
      if (!helper) {
        endWithoutReply(delivery.reply);
        continue;
      }
      if (delivery.reply) helper->underWay.emplace_back(delivery.caller, delivery.reply);
      runtime::start(executor, "an answer of the helper", answer(helper, std::move(delivery)));
    }
  }

  static Async<void> answer(std::shared_ptr<HelperEnd> helper, Delivery delivery) {
    auto answered = co_await helper->service->answer(delivery.caller, std::move(delivery.message));
    std::erase_if(helper->underWay, [&](const auto& call) { return call.second == delivery.reply; });
    if (delivery.reply) delivery.reply->complete(replyIn(std::move(answered)));
  }

  void endHelper() {
    if (!helper) return;
    const auto ended = std::exchange(helper, nullptr);
    for (const auto& [caller, reply] : ended->underWay)
      endWithoutReply(reply);
    later([](Hub& hub) { hub.handInboxOver(); });
    for (const auto& channel : std::vector(channels)) {
      if (channel->handlers.interrupted) channel->handlers.interrupted();
    }
  }

  /// The channel's calls end, and the helper sees the caller go.
  void endChannel(const std::shared_ptr<ChannelEnd>& channel) {
    channel->isGone = true;
    std::erase(channels, channel);
    std::erase_if(inbox, [&](const Delivery& delivery) {
      const bool isOfChannel = delivery.caller == channel->caller;
      if (isOfChannel) endWithoutReply(delivery.reply);
      return isOfChannel;
    });
    if (!helper) return;
    for (const auto& [caller, reply] : helper->underWay) {
      if (caller == channel->caller) endWithoutReply(reply);
    }
    later([caller = channel->caller](Hub& hub) {
      const bool isWatched = hub.helper && hub.helper->watched.erase(caller) > 0;
      if (isWatched) hub.helper->service->callerIsGone(caller);
    });
  }

  void breakChannel(const std::shared_ptr<ChannelEnd>& channel) {
    if (channel->isGone) return;
    const auto handlers = std::exchange(channel->handlers, {});
    endChannel(channel);
    if (handlers.invalidated) handlers.invalidated();
  }

  void breakChannels() {
    for (const auto& channel : std::vector(channels))
      breakChannel(channel);
  }

  template <class Work>
  void later(Work work) {
    boost::asio::post(executor, [self = shared_from_this(), work = std::move(work)] { work(*self); });
  }

  runtime::Executor executor;
  std::shared_ptr<HelperEnd> helper;
  std::vector<std::shared_ptr<ChannelEnd>> channels;
  std::deque<Delivery> inbox;
  std::size_t channelsMade = 0;
  bool isReachable = true;
};

class InProcessLink::Channel final : public HelperChannel {
public:
  explicit Channel(std::shared_ptr<Hub> hub) : hub_(std::move(hub)) {
    end_->caller.name = fmt::format("channel {}", ++hub_->channelsMade);
  }
  ~Channel() override { invalidate(); }

  void resume(Handlers handlers) override {
    end_->handlers = std::move(handlers);
    end_->isOpen = hub_->isReachable;
    hub_->channels.push_back(end_);
  }

  Async<Reply> call(HelperMessage message) override {
    auto reply = std::make_shared<Completion<Reply>>(hub_->executor);
    if (canBeUsed()) {
      hub_->deliver({.caller = end_->caller, .message = std::move(message), .reply = reply});
    } else {
      reply->complete(std::nullopt);
    }
    return Completion<Reply>::valueOf(std::move(reply));
  }

  void send(HelperMessage message) override {
    if (canBeUsed()) hub_->deliver({.caller = end_->caller, .message = std::move(message), .reply = nullptr});
  }

  void invalidate() override {
    if (end_->isGone) return;
    end_->handlers = {};
    hub_->endChannel(end_);
  }

private:
  /// A channel that could not be opened breaks when this is first asked.
  bool canBeUsed() {
    if (!end_->isOpen) hub_->breakChannel(end_);
    return !end_->isGone;
  }

  std::shared_ptr<Hub> hub_;
  std::shared_ptr<ChannelEnd> end_ = std::make_shared<ChannelEnd>();
};

class InProcessLink::Listener final : public HelperListener {
public:
  explicit Listener(std::shared_ptr<Hub> hub) : hub_(std::move(hub)), end_(hub_->helper) {}
  ~Listener() override { invalidate(); }

  void resume(HelperService& service, std::function<void(std::string)> lost) override {
    end_->service = &service;
    end_->lost = std::move(lost);
    hub_->later([](Hub& hub) { hub.handInboxOver(); });
  }

  void watch(const HelperCaller& caller) override {
    const auto isOpen = [&](const auto& channel) { return channel->caller == caller; };
    if (std::any_of(hub_->channels.begin(), hub_->channels.end(), isOpen)) end_->watched.insert(caller);
  }
  void unwatch(const HelperCaller& caller) override { end_->watched.erase(caller); }

  void invalidate() override {
    end_->lost = nullptr;
    if (hub_->helper == end_) hub_->endHelper();
  }

private:
  std::shared_ptr<Hub> hub_;
  std::shared_ptr<HelperEnd> end_;
};

InProcessLink::InProcessLink(const runtime::Executor& executor) : hub_(std::make_shared<Hub>(executor)) {}

HelperChannelFactory InProcessLink::channels() {
  return [hub = hub_] { return std::make_unique<Channel>(hub); };
}

std::unique_ptr<HelperListener> InProcessLink::claimListener() {
  if (hub_->helper) throw std::logic_error("there is a helper already");
  hub_->helper = std::make_shared<HelperEnd>();
  return std::make_unique<Listener>(hub_);
}

void InProcessLink::killHelper() {
  hub_->endHelper();
}

void InProcessLink::loseHelper(const std::string& reason) {
  const auto helper = hub_->helper;
  hub_->endHelper();
  hub_->later([helper, reason](Hub&) {
    if (helper && helper->lost) helper->lost(reason);
  });
}

void InProcessLink::breakChannels() {
  hub_->breakChannels();
}

void InProcessLink::setReachable(bool isReachable) {
  hub_->isReachable = isReachable;
  if (!isReachable) hub_->breakChannels();
}

std::size_t InProcessLink::channelsMade() const {
  return hub_->channelsMade;
}

} // namespace ventolith::helper
