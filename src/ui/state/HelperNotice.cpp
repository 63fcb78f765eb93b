#include "ui/state/HelperNotice.h"

#include <QCoreApplication>

#include <utility>

namespace ventolith::ui {

namespace {

class Notice {
  Q_DECLARE_TR_FUNCTIONS(HelperNotice)
};

HelperNotice inactiveNotice(QString title, QString text) {
  return {.kind = HelperNotice::Kind::inactive,
          .symbol = QStringLiteral("bolt.slash.fill"),
          .title = std::move(title),
          .text = std::move(text),
          .buttonTitle = Notice::tr("Enable…")};
}

HelperNotice staleNotice(QString title, QString text, bool isAttemptingRecovery) {
  return {.kind = HelperNotice::Kind::stale,
          .symbol = QStringLiteral("exclamationmark.arrow.triangle.2.circlepath"),
          .title = std::move(title),
          .text = std::move(text),
          .buttonTitle = isAttemptingRecovery ? Notice::tr("Restarting…") : Notice::tr("Restart Helper"),
          .isButtonEnabled = !isAttemptingRecovery};
}

QString bannerAdvice(bool isAttemptingRecovery) {
  if (isAttemptingRecovery) return Notice::tr("Restarting the helper…");
  return Notice::tr(
      "This can happen right after an update. Restarting the helper below usually fixes it in a few seconds "
      "— it should keep its \"Allow in the Background\" approval, but macOS may occasionally ask you to "
      "allow it again in System Settings. If it doesn't help, restart your Mac; that always starts the "
      "helper fresh.");
}

} // namespace

std::optional<HelperNotice> dashboardBanner(const HelperCondition& condition) {
  if (!condition.isHelperActive) {
    return inactiveNotice(Notice::tr("Fan control isn't active yet"),
                          Notice::tr("Sensor readings above are live. Set up the privileged helper to enable "
                                     "manual and Full Blast control."));
  }
  if (!condition.isHelperStale) return std::nullopt;
  return staleNotice(
      Notice::tr("Ventolith's background helper isn't answering a version check — it may still be running "
                 "older code from before this update, or it hit a problem starting up. Restart it to make "
                 "sure fan control is current."),
      bannerAdvice(condition.isAttemptingStaleRecovery), condition.isAttemptingStaleRecovery);
}

std::optional<HelperNotice> panelHelperRow(const HelperCondition& condition) {
  if (!condition.isHelperActive) return inactiveNotice(Notice::tr("Fan control isn't active yet"), {});
  if (!condition.isHelperStale) return std::nullopt;
  return staleNotice(Notice::tr("Helper isn't answering a version check — it may be running older code"),
                     Notice::tr("Fan control may not reflect this update."),
                     condition.isAttemptingStaleRecovery);
}

} // namespace ventolith::ui
