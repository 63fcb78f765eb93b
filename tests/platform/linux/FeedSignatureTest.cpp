// The signature of an update feed, and what is said of a check that failed.
#include "platform/linux/desktop/FeedSignature.h"
#include "app/UpdateController.h"
#include "platform/linux/desktop/FeedFailure.h"
#include "platform/linux/desktop/FeedUpdateEngine.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>

namespace ventolith::platform {
namespace {

TEST(SignatureURL, IsTheFeedsWithSigBehindItsPath) {
  const std::pair<const char*, const char*> cases[] = {
      {"https://example.com/feed.xml", "https://example.com/feed.xml.sig"},
      {"https://example.com:8443/a/feed.xml", "https://example.com:8443/a/feed.xml.sig"},
      {"https://example.com/feed.xml?os=linux&b=/x", "https://example.com/feed.xml.sig?os=linux&b=/x"},
      {"https://example.com/feed.xml?", "https://example.com/feed.xml.sig?"},
      {"https://example.com/feed.xml#top", "https://example.com/feed.xml.sig"},
      {"https://example.com/a%3Fb", "https://example.com/a%3Fb.sig"},
      {"https://example.com/", "https://example.com/.sig"},
      {"https://example.com", "https://example.com/.sig"},
      {"https://example.com?feed", "https://example.com/.sig?feed"},
      {"http://[::1]:80/feed", "http://[::1]:80/feed.sig"},
  };
  for (const auto& [feed, signature] : cases)
    EXPECT_EQ(signatureURL(feed), signature);
}

// The second test vector of RFC 8032, and the first, of the empty message.
const std::string message = "\x72";
const std::string key = "PUAXw+hDiVqStwqnTRt+vJyYLM8uxJaMwM1V8Sr0Zgw=";
const std::string signature =
    "kqAJqfDUyrhyDoILX2QlQKKye1QWUD+Ps3YiI+vbadoIWsHkPhWZbkWPNhPQ8R2MOHsurrQwKu6wDSkWErsMAA==";
const std::string emptyKey = "11qYAYKxCrfVS/7TyWQHOg7hcvPapiMlrwIaaPcHURo=";
const std::string emptySignature =
    "5VZDAMNgrHKQhuLMgG6CioSHfx645dl02HPgZSJJAVVfuIIVkKM7rMYeOXAc+bRr0lv18FlbviRlUUFDjnoQCw==";

TEST(FeedSignature, HoldsForTheKeysOwnFeed) {
  EXPECT_TRUE(isSignedFeed(message, signature, key));
  EXPECT_TRUE(isSignedFeed(message, "\n " + signature + "\r\n", key));
  EXPECT_TRUE(isSignedFeed("", emptySignature, emptyKey));
}

TEST(FeedSignature, HoldsForNothingElse) {
  struct Case {
    const char* what;
    std::string feed;
    std::string signature;
    std::string key;
  };
  std::string otherSignature = signature;
  otherSignature[5] = 'B';
  const Case cases[] = {
      {"another feed", "\x73", signature, key},
      {"more of the feed", message + "\n", signature, key},
      {"another signature", message, otherSignature, key},
      {"another key", message, signature, emptyKey},
      {"a key that is none", message, signature, "AAAA"},
      {"the key of no one", message, signature, "AAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAA="},
      {"no signature", message, "", key},
      {"half a signature", message, signature.substr(0, 44), key},
      {"two signatures", message, signature.substr(0, 86) + signature, key},
      {"lines in it", message, signature.substr(0, 44) + "\n" + signature.substr(44), key},
      {"no base64", message, "<html>", key},
  };
  for (const auto& [what, feed, signed_, by] : cases)
    EXPECT_FALSE(isSignedFeed(feed, signed_, by)) << what;
}

TEST(FeedFailure, IsAFailureWithASentenceOfItsOwn) {
  const std::pair<DownloadFailure, const char*> cases[] = {
      {{CURLE_COULDNT_RESOLVE_HOST, 0}, "The update server was not found. Is this computer online?"},
      {{CURLE_COULDNT_CONNECT, 0}, "The update server cannot be reached."},
      {{CURLE_OPERATION_TIMEDOUT, 0}, "The update server took too long."},
      {{CURLE_HTTP_RETURNED_ERROR, 404}, "The update server answered with the status 404."},
      {{CURLE_TOO_MANY_REDIRECTS, 302}, "The update server redirects too often."},
      {{CURLE_FILESIZE_EXCEEDED, 200}, "The update server's answer is too large."},
      {{CURLE_PEER_FAILED_VERIFICATION, 0}, "The update server's certificate cannot be trusted."},
      {{CURLE_PARTIAL_FILE, 200}, "The connection to the update server broke."},
      {{CURLE_LOGIN_DENIED, 0}, "The update feed could not be loaded (Login denied)."},
  };
  for (const auto& [failure, sentence] : cases) {
    const app::PlatformError error = platformError(failure);
    EXPECT_EQ(error.domain, "CURLErrorDomain");
    EXPECT_EQ(error.code, failure.code);
    EXPECT_EQ(app::outcomeForAbort(error), app::UpdateCheckOutcome::failed(sentence));
  }
}

TEST(FeedFailure, KeepsWhatIsWrongWithAFeedFromTheUser) {
  const app::PlatformError error = platformError(AppcastError{"line 7: mismatched tag"});
  EXPECT_EQ(app::outcomeForAbort(error), app::UpdateCheckOutcome::failed("The update feed cannot be read."));
  EXPECT_EQ(error.underlying->description, "line 7: mismatched tag");
}

TEST(FeedFailure, SaysThatASignatureIsWrong) {
  EXPECT_EQ(app::outcomeForAbort(invalidSignatureError()),
            app::UpdateCheckOutcome::failed("The update feed's signature is not valid."));
}

} // namespace
} // namespace ventolith::platform
