// Where the newest accepted envelope is kept.
#pragma once

#include "app/platform-kit/SignedEnvelope.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <variant>

namespace ventolith::app {

/// The envelope and not the document in it: so every read can verify the signature again.
struct ConfigurationCacheRecord {
  std::int64_t revision = 0;
  SignedEnvelope envelope;

  bool operator==(const ConfigurationCacheRecord&) const = default;
};

/// `what()` is the case, for a log.
class ConfigurationCacheError : public std::runtime_error {
public:
  struct Keychain {
    std::int64_t status; // The system's own code.
    bool operator==(const Keychain&) const = default;
  };
  enum class Plain { corruptRecord };
  using Case = std::variant<Keychain, Plain>;

  explicit ConfigurationCacheError(Case value);

  [[nodiscard]] const Case& value() const { return value_; }

private:
  Case value_;
};

/// What a stored record may be at the most. Wider than what travels: a record is longer than its envelope,
/// and base64 a third longer than the document in it, so that whatever was accepted can be read again.
inline constexpr core::JSONBounds recordBounds{.bytes = std::size_t{4} << 20};

/// A record as it is stored, one line of JSON. Throws ConfigurationCacheError (corruptRecord) for a record
/// that would be over `recordBounds`, and so never be read again.
[[nodiscard]] std::string encode(const ConfigurationCacheRecord& record);
/// The record in what a store holds. Throws ConfigurationCacheError (corruptRecord) if there is none.
[[nodiscard]] ConfigurationCacheRecord decodeConfigurationCacheRecord(std::string_view stored);

/// A store for one record, private to one installation and kept on the device. The cache calls it from one
/// thread at a time, and never from two for one coordination key.
class ConfigurationCacheStoring {
public:
  ConfigurationCacheStoring() = default;
  ConfigurationCacheStoring(const ConfigurationCacheStoring&) = delete;
  ConfigurationCacheStoring& operator=(const ConfigurationCacheStoring&) = delete;
  virtual ~ConfigurationCacheStoring() = default;

  /// None if nothing is stored. Throws ConfigurationCacheError or a failure of its own.
  virtual std::optional<ConfigurationCacheRecord> load() = 0;
  /// Replaces what is stored, or leaves it and throws.
  virtual void save(const ConfigurationCacheRecord& record) = 0;

  /// Names the place of storage: the same text for all stores of one place. By default the name of the class.
  [[nodiscard]] virtual std::string coordinationKey() const;
};

/// Keeps the record for as long as it lives.
class MemoryConfigurationCacheStore final : public ConfigurationCacheStoring {
public:
  MemoryConfigurationCacheStore() = default;
  /// Holds `stored` from the start, which may be anything.
  explicit MemoryConfigurationCacheStore(std::string stored) : stored_(std::move(stored)) {}

  std::optional<ConfigurationCacheRecord> load() override;
  void save(const ConfigurationCacheRecord& record) override;

private:
  std::optional<std::string> stored_;
};

} // namespace ventolith::app
