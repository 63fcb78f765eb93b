#include "platform/linux/desktop/Download.h"

#include <sys/socket.h>

#include <algorithm>
#include <chrono>
#include <memory>
#include <new>
#include <string_view>
#include <utility>

namespace ventolith::platform {

namespace {

struct EasyEnd {
  void operator()(CURL* easy) const { curl_easy_cleanup(easy); }
};
using Easy = std::unique_ptr<CURL, EasyEnd>;

/// What has come, by curl's hand.
struct Answer {
  std::size_t maximumBytes;
  std::string body = {};
  std::size_t headerBytes = 0;
  bool isTooLarge = false;

  std::size_t takeBody(std::string_view bytes) {
    isTooLarge = bytes.size() > maximumBytes - body.size();
    if (!isTooLarge) body.append(bytes);
    return isTooLarge ? CURL_WRITEFUNC_ERROR : bytes.size();
  }
  std::size_t takeHeader(std::string_view bytes) {
    headerBytes += bytes.size();
    isTooLarge = headerBytes > DownloadLimits::headerBytes;
    return isTooLarge ? CURL_WRITEFUNC_ERROR : bytes.size();
  }
};

template <std::size_t (Answer::*take)(std::string_view)>
std::size_t taken(const char* bytes, std::size_t, std::size_t count, void* answer) {
  return (static_cast<Answer*>(answer)->*take)({bytes, count});
}

/// The programs that this process starts inherit none of curl's sockets.
curl_socket_t openSocket(void*, curlsocktype, curl_sockaddr* address) {
  return ::socket(address->family, address->socktype | SOCK_CLOEXEC, address->protocol);
}

/// At least one: zero would be no limit at all.
long milliseconds(runtime::Duration span) {
  return static_cast<long>(std::max<std::chrono::milliseconds::rep>(
      1, std::chrono::ceil<std::chrono::milliseconds>(span).count()));
}

/// False when this libcurl lacks any of what was asked for: then nothing may be loaded.
class Options {
public:
  explicit Options(CURL* easy) : easy_(easy) {}

  template <class Value>
  Options& set(CURLoption option, Value value) {
    areSet_ = areSet_ && curl_easy_setopt(easy_, option, value) == CURLE_OK;
    return *this;
  }
  [[nodiscard]] bool areSet() const { return areSet_; }

private:
  CURL* easy_;
  bool areSet_ = true;
};

bool describe(CURL* easy, const DownloadRequest& request, Answer& answer) {
  Options options(easy);
  options.set(CURLOPT_URL, request.url.c_str())
      .set(CURLOPT_USERAGENT, request.userAgent.c_str())
      .set(CURLOPT_PROTOCOLS_STR, request.allowsPlainHTTP ? "http,https" : "https")
      .set(CURLOPT_REDIR_PROTOCOLS_STR, "https")
      .set(CURLOPT_FOLLOWLOCATION, 1L)
      .set(CURLOPT_MAXREDIRS, DownloadLimits::redirects)
      .set(CURLOPT_DISALLOW_USERNAME_IN_URL, 1L)
      .set(CURLOPT_FAILONERROR, 1L)
      .set(CURLOPT_HTTP_VERSION,
           static_cast<long>(CURL_HTTP_VERSION_1_1)) // The plainest that every server speaks.
      .set(CURLOPT_SSLVERSION, static_cast<long>(CURL_SSLVERSION_TLSv1_2))
      .set(CURLOPT_SSL_VERIFYPEER, 1L)
      .set(CURLOPT_SSL_VERIFYHOST, 2L);
  if (request.authorities)
    options.set(CURLOPT_CAINFO, request.authorities->c_str())
        .set(CURLOPT_CAPATH, static_cast<const char*>(nullptr));
  options.set(CURLOPT_CONNECTTIMEOUT_MS, milliseconds(request.connectLimit))
      .set(CURLOPT_TIMEOUT_MS, milliseconds(request.limit))
      .set(CURLOPT_MAXFILESIZE_LARGE, static_cast<curl_off_t>(request.maximumBytes))
      .set(CURLOPT_WRITEFUNCTION, &taken<&Answer::takeBody>)
      .set(CURLOPT_WRITEDATA, &answer)
      .set(CURLOPT_HEADERFUNCTION, &taken<&Answer::takeHeader>)
      .set(CURLOPT_HEADERDATA, &answer)
      .set(CURLOPT_OPENSOCKETFUNCTION, &openSocket)
      .set(CURLOPT_NOSIGNAL, 1L)
      .set(CURLOPT_QUICK_EXIT, 1L); // Whoever gives up does not wait for the answer about a name.
  return options.areSet();
}

} // namespace

runtime::Async<DownloadResult> download(std::shared_ptr<CurlMulti> curl, DownloadRequest request,
                                        runtime::StopToken stop) {
  Answer answer{.maximumBytes = request.maximumBytes};
  const Easy easy(curl_easy_init());
  if (!easy) throw std::bad_alloc();
  if (!describe(easy.get(), request, answer)) co_return DownloadFailure{CURLE_NOT_BUILT_IN, 0};

  const CURLcode code = co_await curl->perform(easy.get(), stop);
  long status = 0;
  curl_easy_getinfo(easy.get(), CURLINFO_RESPONSE_CODE, &status);
  if (answer.isTooLarge) co_return DownloadFailure{CURLE_FILESIZE_EXCEEDED, status};
  if (code != CURLE_OK) co_return DownloadFailure{code, status};
  if (status != 200) co_return DownloadFailure{CURLE_HTTP_RETURNED_ERROR, status};
  co_return std::move(answer.body);
}

} // namespace ventolith::platform
