// The line under the curve editor's chart: where the curve works now, or that nobody knows.
#pragma once

#include "ui/kit/Transition.h"
#include "ui/state/ChartGeometry.h"

#include <QLabel>

#include <optional>

namespace ventolith::ui {

/// Known to assistive technology as a label. Another reading shows at once; between a reading and none it
/// fades.
class CurveLiveLine final : public QLabel {
  Q_OBJECT

public:
  explicit CurveLiveLine(const Theme& theme, QWidget* parent = nullptr);

  void display(const std::optional<ChartValue>& livePoint);
  /// From 0, without a reading, to 1.
  [[nodiscard]] Transition& motion() { return isLive_; }

protected:
  void paintEvent(QPaintEvent* event) override;

private:
  const Theme& theme_;
  QString liveText_; // The last, which fades away when there is none any more.
  QString noText_;
  Transition isLive_;
};

} // namespace ventolith::ui
