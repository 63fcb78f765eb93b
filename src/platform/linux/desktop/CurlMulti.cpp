#include "platform/linux/desktop/CurlMulti.h"

#include <boost/asio/posix/stream_descriptor.hpp>
#include <boost/asio/post.hpp>

#include <fcntl.h>
#include <unistd.h>

#include <chrono>
#include <new>
#include <stdexcept>
#include <utility>

namespace ventolith::platform {

namespace asio = boost::asio;
using asio::posix::descriptor_base;

namespace {

/// Once a process, and never undone: the libraries below curl are the process's too.
void prepareCurl() {
  static const CURLcode prepared = curl_global_init(CURL_GLOBAL_DEFAULT);
  if (prepared != CURLE_OK) throw std::runtime_error("libcurl cannot be used on this computer");
}

} // namespace

class CurlMulti::Key {};

/// A socket of curl's that it waits for.
struct CurlMulti::Watch {
  Watch(const runtime::Executor& executor, curl_socket_t watched) : socket(watched), descriptor(executor) {
    // curl closes its sockets by itself. Asio would then have to forget a number that may name something else
    // by now, so it is given one of its own. Without one the transfer stands until its limit of time.
    const int number = ::fcntl(watched, F_DUPFD_CLOEXEC, 0);
    boost::system::error_code refused;
    if (number >= 0) descriptor.assign(number, refused);
    if (refused) ::close(number);
  }
  Watch(const Watch&) = delete;
  Watch& operator=(const Watch&) = delete;
  ~Watch() {
    // Taken out of the reactor before it is closed: Asio's own close relies on this being the socket's last
    // number.
    if (descriptor.is_open()) ::close(descriptor.release());
  }

  const curl_socket_t socket;
  asio::posix::stream_descriptor descriptor;
  bool isReadingWanted = false;
  bool isWritingWanted = false;
  bool isReadingAwaited = false;
  bool isWritingAwaited = false;
};

struct CurlMulti::Transfer {
  Transfer(CurlMulti& on, CURL* what, const runtime::Executor& executor)
      : multi(on.multi_), easy(what), ended(executor) {
    curl_easy_setopt(easy, CURLOPT_PRIVATE, this);
    if (curl_multi_add_handle(multi, easy) != CURLM_OK) throw std::bad_alloc();
  }
  Transfer(const Transfer&) = delete;
  Transfer& operator=(const Transfer&) = delete;
  ~Transfer() { curl_multi_remove_handle(multi, easy); }

  CURLM* multi;
  CURL* easy;
  runtime::Event ended;
  std::optional<CURLcode> code;
};

std::shared_ptr<CurlMulti> CurlMulti::make(const runtime::Executor& executor, runtime::Clock& clock) {
  prepareCurl();
  return std::make_shared<CurlMulti>(Key(), executor, clock);
}

CurlMulti::CurlMulti(Key /*key*/, const runtime::Executor& executor, runtime::Clock& clock)
    : executor_(executor), clock_(clock), multi_(curl_multi_init()) {
  if (multi_ == nullptr) throw std::bad_alloc();
  const curl_multi_timer_callback setTimer = [](CURLM*, long milliseconds, void* self) {
    static_cast<CurlMulti*>(self)->setTimer(
        milliseconds < 0 ? std::nullopt
                         : std::optional<runtime::Duration>(std::chrono::milliseconds(milliseconds)));
    return 0;
  };
  const curl_socket_callback watch = [](CURL*, curl_socket_t socket, int what, void* self, void*) {
    static_cast<CurlMulti*>(self)->watch(socket, what);
    return 0;
  };
  curl_multi_setopt(multi_, CURLMOPT_TIMERFUNCTION, setTimer);
  curl_multi_setopt(multi_, CURLMOPT_TIMERDATA, this);
  curl_multi_setopt(multi_, CURLMOPT_SOCKETFUNCTION, watch);
  curl_multi_setopt(multi_, CURLMOPT_SOCKETDATA, this);
}

CurlMulti::~CurlMulti() {
  setTimer(std::nullopt);
  curl_multi_setopt(multi_, CURLMOPT_TIMERFUNCTION, nullptr);
  curl_multi_setopt(multi_, CURLMOPT_SOCKETFUNCTION, nullptr);
  curl_multi_cleanup(multi_);
}

runtime::Async<CURLcode> CurlMulti::perform(CURL* easy, runtime::StopToken stop) {
  return performOn(shared_from_this(), easy, std::move(stop));
}

runtime::Async<CURLcode> CurlMulti::performOn(std::shared_ptr<CurlMulti> self, CURL* easy,
                                              runtime::StopToken stop) {
  if (stop.stopRequested()) co_return CURLE_ABORTED_BY_CALLBACK;
  Transfer transfer(*self, easy, self->executor_);
  const auto observation = stop.onStop([&transfer] { transfer.ended.happen(); });
  co_await transfer.ended.wait();
  co_return transfer.code.value_or(CURLE_ABORTED_BY_CALLBACK);
}

/// curl must not be called inside what it calls, not even for a wait that is over at once.
void CurlMulti::setTimer(std::optional<runtime::Duration> span) {
  if (timer_) timer_->requestStop();
  timer_.reset();
  if (!span) return;
  timer_.emplace();
  asio::post(executor_, [multi = weak_from_this(), &clock = clock_, executor = executor_, span = *span,
                         stop = timer_->token()] {
    runtime::start(executor, "a download's timer", waitForTimer(multi, clock, span, stop));
  });
}

runtime::Async<void> CurlMulti::waitForTimer(std::weak_ptr<CurlMulti> multi, runtime::Clock& clock,
                                             runtime::Duration span, runtime::StopToken stop) {
  co_await clock.sleep(span, stop);
  const auto self = multi.lock();
  if (self && !stop.stopRequested()) self->act(CURL_SOCKET_TIMEOUT, 0);
}

void CurlMulti::watch(curl_socket_t socket, int what) {
  if (what == CURL_POLL_REMOVE) {
    watches_.erase(socket);
    return;
  }
  auto& watch = watches_[socket];
  if (!watch) watch = std::make_shared<Watch>(executor_, socket);
  watch->isReadingWanted = (what & CURL_POLL_IN) != 0;
  watch->isWritingWanted = (what & CURL_POLL_OUT) != 0;
  await(watch, true);
  await(watch, false);
}

void CurlMulti::await(const std::shared_ptr<Watch>& watch, bool isForReading) {
  const bool isWanted = isForReading ? watch->isReadingWanted : watch->isWritingWanted;
  bool& isAwaited = isForReading ? watch->isReadingAwaited : watch->isWritingAwaited;
  if (!isWanted || isAwaited || !watch->descriptor.is_open()) return;
  isAwaited = true;
  watch->descriptor.async_wait(isForReading ? descriptor_base::wait_read : descriptor_base::wait_write,
                               [weakMulti = weak_from_this(), weakWatch = std::weak_ptr(watch), isForReading,
                                &isAwaited](const boost::system::error_code& error) {
                                 const auto self = weakMulti.lock();
                                 const auto watched = weakWatch.lock();
                                 if (!self || !watched || error) return;
                                 isAwaited = false;
                                 if (isForReading ? watched->isReadingWanted : watched->isWritingWanted)
                                   self->act(watched->socket,
                                             isForReading ? CURL_CSELECT_IN : CURL_CSELECT_OUT);
                                 // Unless curl has let go of the socket, whose number may be another one's by
                                 // now.
                                 const auto place = self->watches_.find(watched->socket);
                                 if (place != self->watches_.end() && place->second == watched)
                                   self->await(watched, isForReading);
                               });
}

void CurlMulti::act(curl_socket_t socket, int events) {
  int running = 0;
  curl_multi_socket_action(multi_, socket, events, &running);
  tellEnds();
}

void CurlMulti::tellEnds() {
  int left = 0;
  while (const CURLMsg* const message = curl_multi_info_read(multi_, &left)) {
    if (message->msg != CURLMSG_DONE) continue;
    Transfer* transfer = nullptr;
    curl_easy_getinfo(message->easy_handle, CURLINFO_PRIVATE, &transfer);
    transfer->code = message->data.result;
    transfer->ended.happen();
  }
}

} // namespace ventolith::platform
