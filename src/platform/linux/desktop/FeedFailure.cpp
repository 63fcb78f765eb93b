#include "platform/linux/desktop/FeedFailure.h"

#include "platform/linux/desktop/FeedUpdateEngine.h"

#include <fmt/format.h>

#include <memory>
#include <string>
#include <utility>

namespace ventolith::platform {

namespace {

std::string descriptionOf(const DownloadFailure& failure) {
  switch (failure.code) {
  case CURLE_COULDNT_RESOLVE_HOST:
  case CURLE_COULDNT_RESOLVE_PROXY: return "The update server was not found. Is this computer online?";
  case CURLE_COULDNT_CONNECT: return "The update server cannot be reached.";
  case CURLE_OPERATION_TIMEDOUT: return "The update server took too long.";
  case CURLE_HTTP_RETURNED_ERROR:
    return fmt::format("The update server answered with the status {}.", failure.httpStatus);
  case CURLE_TOO_MANY_REDIRECTS: return "The update server redirects too often.";
  case CURLE_UNSUPPORTED_PROTOCOL: return "The update server redirects to an address that is not secure.";
  case CURLE_FILESIZE_EXCEEDED: return "The update server's answer is too large.";
  case CURLE_PEER_FAILED_VERIFICATION:
  case CURLE_SSL_ISSUER_ERROR: return "The update server's certificate cannot be trusted.";
  case CURLE_SSL_CONNECT_ERROR: return "No secure connection to the update server could be made.";
  case CURLE_PARTIAL_FILE:
  case CURLE_GOT_NOTHING:
  case CURLE_RECV_ERROR:
  case CURLE_SEND_ERROR: return "The connection to the update server broke.";
  default: return fmt::format("The update feed could not be loaded ({}).", curl_easy_strerror(failure.code));
  }
}

} // namespace

app::PlatformError platformError(const DownloadFailure& failure) {
  return {.domain = FeedErrors::transportDomain, .code = failure.code, .description = descriptionOf(failure)};
}

app::PlatformError platformError(const AppcastError& error) {
  return {
      .domain = FeedErrors::feedDomain,
      .code = FeedErrors::malformedFeed,
      .description = "The update feed cannot be read.",
      .underlying = std::make_shared<const app::PlatformError>(app::PlatformError{
          .domain = FeedErrors::feedDomain, .code = FeedErrors::malformedFeed, .description = error.reason})};
}

app::PlatformError invalidSignatureError() {
  return {.domain = FeedErrors::feedDomain,
          .code = FeedErrors::invalidSignature,
          .description = "The update feed's signature is not valid."};
}

} // namespace ventolith::platform
