// The information dictionary that a build is installed with.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>

namespace ventolith::app {

class BundleInfo {
public:
  BundleInfo() = default;
  BundleInfo(const BundleInfo&) = delete;
  BundleInfo& operator=(const BundleInfo&) = delete;
  virtual ~BundleInfo() = default;

  /// None when the key is missing, and when its value is of another type.
  [[nodiscard]] virtual std::optional<std::string> string(std::string_view key) const = 0;
  [[nodiscard]] virtual std::optional<bool> boolean(std::string_view key) const = 0;
};

/// A dictionary in memory.
class MapBundleInfo final : public BundleInfo {
public:
  using Value = std::variant<std::string, bool>;
  using Values = std::map<std::string, Value, std::less<>>;

  explicit MapBundleInfo(Values values) : values_(std::move(values)) {}

  [[nodiscard]] std::optional<std::string> string(std::string_view key) const override;
  [[nodiscard]] std::optional<bool> boolean(std::string_view key) const override;

private:
  template <class Type>
  [[nodiscard]] std::optional<Type> value(std::string_view key) const;

  Values values_;
};

} // namespace ventolith::app
