// A publisher of an update feed on a server of the tests' own, and the application's two executors, which one
// thread runs by turns.
#pragma once

#include "app/UpdateController.h"
#include "app/platform-kit/Base64.h"
#include "app/platform-kit/BundleInfo.h"
#include "e2e/EnvironmentVariable.h"
#include "e2e/WebServer.h"
#include "platform/linux/SystemClock.h"
#include "platform/linux/desktop/FeedUpdateEngine.h"

#include <boost/asio/io_context.hpp>

#include <chrono>
#include <functional>
#include <string>
#include <vector>

namespace ventolith::e2e {

/// Signs feeds, with a key pair made from `seed`.
class FeedPublisher {
public:
  explicit FeedPublisher(std::uint8_t seed = 1);

  /// In base64, as `sign` gives its signatures.
  [[nodiscard]] std::string publicKey() const { return publicKey_; }
  [[nodiscard]] std::string sign(const std::string& feed) const;

private:
  std::string publicKey_;
  app::Bytes secretKey_;
};

struct FeedItem {
  std::string build;
  std::string version;
  std::string channel = {}; // Empty is the default one.
};

/// Each item's page is "https://example.com/" and its version.
[[nodiscard]] std::string feedOf(const std::vector<FeedItem>& items);

/// An authority that every test shares: making one takes time.
[[nodiscard]] const TestAuthority& testAuthority();

/// The two event loops.
class FeedLoops {
public:
  [[nodiscard]] runtime::Executor mainExecutor() { return main_.get_executor(); }
  [[nodiscard]] runtime::Executor engineExecutor() { return engine_.get_executor(); }
  [[nodiscard]] runtime::Clock& clock() { return clock_; }

  /// Runs both until `holds`. Fails with std::runtime_error after 20 seconds.
  void until(const std::string& what, const std::function<bool()>& holds);
  void runFor(std::chrono::milliseconds span);

  /// How often something woke the engine's loop.
  [[nodiscard]] std::size_t engineWakeUps() const { return engineWakeUps_; }

private:
  void turn();

  boost::asio::io_context main_;
  boost::asio::io_context engine_;
  platform::SystemClock clock_{engine_.get_executor()};
  std::size_t engineWakeUps_ = 0;
};

/// This process's environment names no proxy.
class NoProxies {
  EnvironmentVariable secure_{"https_proxy", std::nullopt};
  EnvironmentVariable secureCapitals_{"HTTPS_PROXY", std::nullopt};
  EnvironmentVariable plain_{"http_proxy", std::nullopt};
  EnvironmentVariable all_{"all_proxy", std::nullopt};
  EnvironmentVariable allCapitals_{"ALL_PROXY", std::nullopt};
};

} // namespace ventolith::e2e
