// One fan on the dashboard: what it does, and the direct way to hold it at a speed.
#pragma once

#include "core/SensorSnapshot.h"
#include "ui/ModelView.h"
#include "ui/kit/Badge.h"
#include "ui/kit/Button.h"
#include "ui/kit/Gauge.h"
#include "ui/kit/KeyboardPlace.h"
#include "ui/kit/Slider.h"
#include "ui/kit/Surface.h"
#include "ui/kit/TextLabel.h"
#include "ui/state/FanTileContent.h"

#include <optional>

QT_BEGIN_NAMESPACE
class QLayout;
QT_END_NAMESPACE

namespace ventolith::ui {

/// A press of its slider begins a drag in the model, every value on the way is previewed there, and the end
/// of the press commits it: only then is a speed sent. Whoever shows the tile refreshes it.
class FanTileView final : public Surface {
  Q_OBJECT

public:
  FanTileView(const ViewContext& context, const core::Fan& fan, QWidget* parent = nullptr);
  ~FanTileView() override;

  [[nodiscard]] core::FanID fanID() const { return fan_.id; }
  /// Shows what the model says of the fan now; `fan` is the latest reading of the same fan.
  void refresh(const core::Fan& fan);

private:
  [[nodiscard]] QLayout* header();
  [[nodiscard]] QLayout* readout();
  [[nodiscard]] QLayout* manualControl();
  [[nodiscard]] QLayout* quickActions();
  void connectActions();
  [[nodiscard]] FanTileState state() const;
  void present(const FanTileContent& content);
  void speak(const FanTileContent& content);

  const ViewContext& context_;
  core::Fan fan_;
  std::optional<FanTileContent> shown_;

  TextLabel* name_;
  Badge* modeBadge_;
  Gauge* gauge_;
  TextLabel* speed_;
  TextLabel* range_;
  TextLabel* statusLine_;
  TextLabel* controlTitle_;
  TextLabel* percentage_;
  Slider* slider_;
  Button* fullBlast_;
  Button* automatic_;
  KeyboardPlace sliderPlace_;
  KeyboardPlace fullBlastPlace_;
};

} // namespace ventolith::ui
