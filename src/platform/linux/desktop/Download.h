// Small files from a web server that nobody need trust: every answer is bounded in size and time.
#pragma once

#include "platform/linux/desktop/CurlMulti.h"
#include "runtime/Async.h"
#include "runtime/StopToken.h"
#include "runtime/Time.h"

#include <boost/system/result.hpp>

#include <cstddef>
#include <filesystem>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>

namespace ventolith::platform {

struct DownloadRequest {
  std::string url;
  std::size_t maximumBytes; // Of the body.
  runtime::Duration connectLimit;
  runtime::Duration limit; // For all of it, redirects included.
  std::string userAgent;
  /// The only certificate authorities that count, in place of the system's.
  std::optional<std::filesystem::path> authorities;
  /// Otherwise only https is spoken, and an http URL fails.
  bool allowsPlainHTTP;
};

struct DownloadFailure {
  CURLcode code;
  long httpStatus; // The last one that came; 0 before any did.
};

[[noreturn]] inline void throw_exception_from_error(const DownloadFailure& failure,
                                                    const boost::source_location&) {
  throw std::logic_error("a download was used that failed: " + std::string(curl_easy_strerror(failure.code)));
}

using DownloadResult = boost::system::result<std::string, DownloadFailure>;

namespace DownloadLimits {
inline constexpr long redirects = 5;
inline constexpr std::size_t headerBytes = 65'536; // Of all answers on the way together.
} // namespace DownloadLimits

/// The body of an answer with the status 200, as it was sent: nothing is unpacked. Redirects lead to https
/// only. Certificates are always checked, cookies and credentials never sent, proxies are those of the
/// environment. What fails tells curl's code, CURLE_ABORTED_BY_CALLBACK once `stop` is requested.
[[nodiscard]] runtime::Async<DownloadResult> download(std::shared_ptr<CurlMulti> curl,
                                                      DownloadRequest request, runtime::StopToken stop);

} // namespace ventolith::platform
