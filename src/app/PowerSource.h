// Where the machine's power comes from, and the seam through which the system tells.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string_view>

namespace ventolith::app {

enum class PowerSource {
  ac,
  battery,
  unknown, ///< No answer from the system, or one that is neither of the two.
};

/// "ac", "battery" or "unknown".
[[nodiscard]] std::string_view rawValue(PowerSource source);
/// The source of exactly that word.
[[nodiscard]] std::optional<PowerSource> powerSource(std::string_view rawValue);

/// Belongs to the engine's thread: it is called there, and calls there.
class PowerSourceProvider {
public:
  PowerSourceProvider() = default;
  PowerSourceProvider(const PowerSourceProvider&) = delete;
  PowerSourceProvider& operator=(const PowerSourceProvider&) = delete;
  virtual ~PowerSourceProvider() = default; // As `stop`.

  /// Calls `onChange` from here on at each of the system's notifications about power supplies, whether or
  /// not it is about the source, and whenever `current` has become known. Called once; without anything
  /// that notifies it does nothing.
  virtual void start(std::function<void()> onChange) = 0;
  /// `onChange` is not called any more.
  virtual void stop() = 0;

  /// As it is known now: `unknown` until the system has answered. Never waits.
  [[nodiscard]] virtual PowerSource current() const = 0;
};

/// Passes the present source on at its start and at each notification, also when it is the same as before.
/// Belongs to the engine's thread, as its provider.
class PowerSourceMonitor {
public:
  using OnChange = std::function<void(PowerSource)>;

  /// Registers nothing yet.
  PowerSourceMonitor(std::unique_ptr<PowerSourceProvider> provider, OnChange onChange);
  PowerSourceMonitor(const PowerSourceMonitor&) = delete;
  PowerSourceMonitor& operator=(const PowerSourceMonitor&) = delete;
  ~PowerSourceMonitor(); // As `stop`.

  /// Calls the handler once before it returns.
  void start();
  void stop();
  [[nodiscard]] PowerSource current() const { return provider_->current(); }

private:
  std::unique_ptr<PowerSourceProvider> provider_;
  OnChange onChange_;
};

} // namespace ventolith::app
