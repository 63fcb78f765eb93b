// What the dashboard and the menu bar's panel say about a helper that is missing or out of date, with the one
// button that repairs it.
#pragma once

#include <QString>

#include <optional>

namespace ventolith::ui {

/// What the model and the helper's manager say.
struct HelperCondition {
  bool isHelperActive = false;
  bool isHelperStale = false;
  bool isAttemptingStaleRecovery = false;
};

struct HelperNotice {
  enum class Kind {
    inactive, ///< In neutral colours; its button begins the onboarding.
    stale,    ///< In orange; its button restarts the helper.
  };

  Kind kind = Kind::inactive;
  QString symbol;
  QString title;
  QString text; // Empty where there is none.
  QString buttonTitle;
  bool isButtonEnabled = true;

  bool operator==(const HelperNotice&) const = default;
};

/// At most one: a helper that is not active is not called stale.
[[nodiscard]] std::optional<HelperNotice> dashboardBanner(const HelperCondition& condition);

/// The same in the words of the panel's row.
[[nodiscard]] std::optional<HelperNotice> panelHelperRow(const HelperCondition& condition);

} // namespace ventolith::ui
