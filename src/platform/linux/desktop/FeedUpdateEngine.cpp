#include "platform/linux/desktop/FeedUpdateEngine.h"

#include "platform/linux/desktop/Appcast.h"
#include "platform/linux/desktop/CurlMulti.h"
#include "platform/linux/desktop/Download.h"
#include "platform/linux/desktop/FeedFailure.h"
#include "platform/linux/desktop/FeedSignature.h"

#include <boost/asio/post.hpp>
#include <fmt/format.h>

#include <exception>
#include <utility>
#include <variant>

namespace ventolith::platform {

namespace asio = boost::asio;
using app::PlatformError;

/// Belongs to the engine executor's thread, but for what never changes.
class FeedUpdateEngine::Work : public std::enable_shared_from_this<Work> {
public:
  Work(FeedUpdateEngineSettings settings, app::UpdateFeedConfiguration configuration,
       std::shared_ptr<app::UpdateEngineDelegate> delegate, std::weak_ptr<Presence> engine)
      : its_(std::move(settings)),
        configuration_(std::move(configuration)),
        delegate_(std::move(delegate)),
        engine_(std::move(engine)) {}

  void checkUnlessChecking() {
    if (stop_.stopRequested() || std::exchange(isChecking_, true)) return;
    runtime::start(its_.engineExecutor, "a check for updates", check(shared_from_this()));
  }
  void drop() { stop_.requestStop(); }

private:
  using Found = std::variant<PlatformError, std::optional<AvailableUpdate>>;

  static runtime::Async<void> check(std::shared_ptr<Work> self) {
    const Found found = co_await self->lookOrFail();
    self->isChecking_ = false;
    if (self->stop_.stopRequested()) co_return;
    if (const auto* const error = std::get_if<PlatformError>(&found)) {
      self->delegate_->didFinishUpdateCycle(*error);
      co_return;
    }
    self->tell(std::get<std::optional<AvailableUpdate>>(found));
    self->delegate_->didFinishUpdateCycle(std::nullopt);
  }

  void tell(const std::optional<AvailableUpdate>& update) {
    if (!update) return delegate_->didNotFindUpdate();
    delegate_->didFindValidUpdate(update->displayVersion);
    if (!update->page) return;
    asio::post(its_.mainExecutor, [engine = engine_, open = its_.openPage, page = *update->page] {
      if (!engine.expired()) open(page);
    });
  }

  runtime::Async<Found> lookOrFail() {
    try {
      co_return co_await look();
    } catch (const std::exception& error) { // A library that cannot be used on this computer.
      co_return PlatformError{.domain = FeedErrors::feedDomain,
                              .code = FeedErrors::checkImpossible,
                              .description = fmt::format("The check cannot be made: {}.", error.what())};
    }
  }

  runtime::Async<Found> look() {
    const runtime::Instant deadline = its_.clock.now() + its_.limits.check;
    const auto curl = CurlMulti::make(its_.engineExecutor, its_.clock);
    const std::string& feedURL = configuration_.feedURL();
    const auto signature = co_await download(
        curl, request(signatureURL(feedURL), its_.limits.signatureBytes, deadline), stop_.token());
    if (!signature) co_return platformError(signature.error());
    const auto feed =
        co_await download(curl, request(feedURL, its_.limits.feedBytes, deadline), stop_.token());
    if (!feed) co_return platformError(feed.error());

    if (!isSignedFeed(*feed, *signature, configuration_.publicKey())) co_return invalidSignatureError();
    const auto appcast = parseAppcast(*feed);
    if (!appcast) co_return platformError(appcast.error());
    co_return newestUpdate(*appcast, delegate_->allowedChannels(), its_.running.buildNumber());
  }

  [[nodiscard]] DownloadRequest request(std::string url, std::size_t bytes, runtime::Instant deadline) const {
    return {.url = std::move(url),
            .maximumBytes = bytes,
            .connectLimit = its_.limits.connect,
            .limit = deadline - its_.clock.now(),
            .userAgent = "Ventolith/" + its_.running.marketingVersion(),
            .authorities = its_.authorities,
            // Such a feed is in a configuration only where it is allowed, and on this very computer.
            .allowsPlainHTTP = configuration_.feedURL().starts_with("http:")};
  }

  const FeedUpdateEngineSettings its_;
  const app::UpdateFeedConfiguration configuration_;
  const std::shared_ptr<app::UpdateEngineDelegate> delegate_;
  const std::weak_ptr<Presence> engine_;
  bool isChecking_ = false;
  runtime::StopSource stop_;
};

FeedUpdateEngine::FeedUpdateEngine(FeedUpdateEngineSettings settings,
                                   app::UpdateFeedConfiguration configuration,
                                   std::shared_ptr<app::UpdateEngineDelegate> delegate)
    : engineExecutor_(settings.engineExecutor),
      presence_(std::make_shared<Presence>()),
      work_(std::make_shared<Work>(std::move(settings), std::move(configuration), std::move(delegate),
                                   presence_)) {}

FeedUpdateEngine::~FeedUpdateEngine() {
  presence_.reset();
  asio::post(engineExecutor_, [work = std::move(work_)] { work->drop(); });
}

void FeedUpdateEngine::checkForUpdates() {
  asio::post(engineExecutor_, [work = work_] { work->checkUnlessChecking(); });
}

app::UpdateEngineFactory feedUpdateEngines(FeedUpdateEngineSettings settings) {
  return [settings = std::move(settings)](const app::UpdateFeedConfiguration& configuration,
                                          std::shared_ptr<app::UpdateEngineDelegate> delegate) {
    return std::make_unique<FeedUpdateEngine>(settings, configuration, std::move(delegate));
  };
}

} // namespace ventolith::platform
