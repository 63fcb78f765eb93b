// How a check for updates ended or stands, and what is said about it. An outcome that is absent is the idle
// state.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>

namespace ventolith::app {

struct UpdateCheckOutcome {
  struct UpdateAvailable {
    std::string version;
    bool operator==(const UpdateAvailable&) const = default;
  };
  struct Failed {
    std::string reason;
    bool operator==(const Failed&) const = default;
  };
  struct Unavailable { // No check can be made.
    std::string reason;
    bool operator==(const Unavailable&) const = default;
  };
  enum class Plain { checking, upToDate, cancelled, timedOut };

  std::variant<UpdateAvailable, Failed, Unavailable, Plain> value;

  static const UpdateCheckOutcome checking;
  static const UpdateCheckOutcome upToDate;
  static const UpdateCheckOutcome cancelled;
  static const UpdateCheckOutcome timedOut;
  [[nodiscard]] static UpdateCheckOutcome updateAvailable(std::string version);
  [[nodiscard]] static UpdateCheckOutcome failed(std::string reason);
  [[nodiscard]] static UpdateCheckOutcome unavailable(std::string reason);

  static constexpr double timeoutSeconds = 60.0; // After that long a check counts as timed out.
  static constexpr std::string_view idleButtonLabel = "Check for Updates";
  static constexpr std::string_view idleDetailMessage = "No update check has run yet.";

  /// Every outcome but `checking`.
  [[nodiscard]] bool isTerminal() const;
  [[nodiscard]] std::string message() const;
  [[nodiscard]] std::string_view shortLabel() const;
  /// Seconds for which it stays on show before the display returns to idle.
  [[nodiscard]] double transientDisplayDuration() const;

  [[nodiscard]] static bool isCheckButtonDisabled(const std::optional<UpdateCheckOutcome>& outcome,
                                                  bool updatesAvailable);
  [[nodiscard]] static std::string_view checkButtonLabel(const std::optional<UpdateCheckOutcome>& outcome);
  [[nodiscard]] static std::string detailMessage(const std::optional<UpdateCheckOutcome>& displayed,
                                                 std::string_view idleFallback);
  /// Whether a return to idle that was scheduled for one outcome still holds: no check has begun since, and
  /// that outcome is still the current one.
  [[nodiscard]] static bool shouldClearOutcome(const UpdateCheckOutcome& scheduledFor,
                                               std::uint64_t scheduledGeneration,
                                               std::uint64_t currentGeneration,
                                               const std::optional<UpdateCheckOutcome>& currentOutcome);

  bool operator==(const UpdateCheckOutcome&) const = default;
};

} // namespace ventolith::app
