// libcurl's transfers on an Asio executor. They use no thread, but for a server's name: curl looks that up on
// one that ends with the answer, for which nobody waits any more once the transfer has ended.
#pragma once

#include "runtime/Async.h"
#include "runtime/Clock.h"
#include "runtime/Event.h"
#include "runtime/StopToken.h"

#include <curl/curl.h>

#include <map>
#include <memory>
#include <optional>

namespace ventolith::platform {

/// Belongs to the thread of its executor. Connections are kept for the next transfer to the same server, for
/// as long as it lives.
class CurlMulti : public std::enable_shared_from_this<CurlMulti> {
public:
  /// `clock` outlives the executor's work.
  [[nodiscard]] static std::shared_ptr<CurlMulti> make(const runtime::Executor& executor,
                                                       runtime::Clock& clock);
  class Key; // Only `make` makes them.
  CurlMulti(Key key, const runtime::Executor& executor, runtime::Clock& clock);
  CurlMulti(const CurlMulti&) = delete;
  CurlMulti& operator=(const CurlMulti&) = delete;
  ~CurlMulti();

  /// Runs the transfer that `easy` describes to its end and returns curl's code; as soon as `stop` is
  /// requested, CURLE_ABORTED_BY_CALLBACK. Sets no option but CURLOPT_PRIVATE. `easy` outlives the call, and
  /// nothing that curl calls for it calls here.
  [[nodiscard]] runtime::Async<CURLcode> perform(CURL* easy, runtime::StopToken stop);

private:
  struct Watch;
  struct Transfer;

  static runtime::Async<CURLcode> performOn(std::shared_ptr<CurlMulti> self, CURL* easy,
                                            runtime::StopToken stop);
  static runtime::Async<void> waitForTimer(std::weak_ptr<CurlMulti> multi, runtime::Clock& clock,
                                           runtime::Duration span, runtime::StopToken stop);
  void setTimer(std::optional<runtime::Duration> span);
  void watch(curl_socket_t socket, int what);
  void await(const std::shared_ptr<Watch>& watch, bool isForReading);
  void act(curl_socket_t socket, int events);
  void tellEnds();

  runtime::Executor executor_;
  runtime::Clock& clock_;
  CURLM* multi_;
  std::map<curl_socket_t, std::shared_ptr<Watch>> watches_;
  std::optional<runtime::StopSource> timer_; // Of the wait that is under way.
};

} // namespace ventolith::platform
