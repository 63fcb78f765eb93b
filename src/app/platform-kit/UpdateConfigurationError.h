// What can be wrong with the settings that a build carries for its updates.
#pragma once

#include <boost/system/result.hpp>

#include <stdexcept>
#include <string>
#include <string_view>
#include <variant>

namespace ventolith::app {

struct UpdateConfigurationError {
  struct InvalidFeedURL {
    std::string text; // Trimmed.
    bool operator==(const InvalidFeedURL&) const = default;
  };
  struct InvalidChannel {
    std::string text; // Trimmed, its letters A to Z in lower case.
    bool operator==(const InvalidChannel&) const = default;
  };
  struct InvalidMarketingVersion {
    std::string text;
    bool operator==(const InvalidMarketingVersion&) const = default;
  };
  struct InvalidBuildNumber {
    std::string text;
    bool operator==(const InvalidBuildNumber&) const = default;
  };
  enum class Plain { missingFeedURL, missingPublicKey, invalidPublicKey };

  std::variant<InvalidFeedURL, InvalidChannel, InvalidMarketingVersion, InvalidBuildNumber, Plain> value;

  static const UpdateConfigurationError missingFeedURL;
  static const UpdateConfigurationError missingPublicKey;
  static const UpdateConfigurationError invalidPublicKey;
  [[nodiscard]] static UpdateConfigurationError invalidFeedURL(std::string_view text);
  [[nodiscard]] static UpdateConfigurationError invalidChannel(std::string_view text);
  [[nodiscard]] static UpdateConfigurationError invalidMarketingVersion(std::string_view text);
  [[nodiscard]] static UpdateConfigurationError invalidBuildNumber(std::string_view text);

  /// The sentence for whoever made the build. It quotes no payload.
  [[nodiscard]] std::string_view description() const;

  bool operator==(const UpdateConfigurationError&) const = default;
};

[[noreturn]] inline void throw_exception_from_error(const UpdateConfigurationError& error,
                                                    const boost::source_location&) {
  throw std::logic_error("a result was used that is none: " + std::string(error.description()));
}

/// A checked setting, or what is wrong with it.
template <class Value>
using UpdateConfigurationResult = boost::system::result<Value, UpdateConfigurationError>;

} // namespace ventolith::app
