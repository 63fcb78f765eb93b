// Tells the theme what the toolkit knows of the system: light or dark, and the accent colour, live.
#pragma once

#include "ui/kit/Theme.h"

#include <QObject>

QT_BEGIN_NAMESPACE
class QPalette;
QT_END_NAMESPACE

namespace ventolith::ui {

/// One beside the theme, which outlives it. The application object stands before it is made.
class FollowsQt : public QObject {
  Q_OBJECT

public:
  explicit FollowsQt(Theme& theme, QObject* parent = nullptr);

  /// What a palette of the toolkit gives away: dark where its windows are darker than their text.
  [[nodiscard]] static SystemLook lookOf(const QPalette& palette);

protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

private:
  void read();

  Theme& theme_;
};

} // namespace ventolith::ui
