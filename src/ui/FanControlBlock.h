// One fan in the menu bar's panel.
#pragma once

#include "core/SensorSnapshot.h"
#include "ui/ModelView.h"
#include "ui/state/MenuBarContent.h"

#include <optional>

QT_BEGIN_NAMESPACE
class QLayout;
QT_END_NAMESPACE

namespace ventolith::ui {

class Badge;
class Button;
class Slider;
class TextLabel;

/// A press of its slider begins a drag in the model, every value on the way is previewed there, and the end
/// of the press commits it. Whoever shows the block refreshes it.
class FanControlBlock final : public QWidget {
  Q_OBJECT

public:
  FanControlBlock(const ViewContext& context, const core::Fan& fan, QWidget* parent = nullptr);
  ~FanControlBlock() override;

  [[nodiscard]] core::FanID fanID() const { return fan_.id; }
  /// Shows what the model says of the fan now; `fan` is the latest reading of the same fan.
  void refresh(const core::Fan& fan);

private:
  [[nodiscard]] QLayout* makeReading();
  [[nodiscard]] QLayout* makeControls();
  void connectActions();
  [[nodiscard]] FanControlBlockState state() const;
  void present(const FanControlBlockContent& content);
  void speak(const FanControlBlockContent& content);

  app::AppModel& model_;
  core::Fan fan_;
  std::optional<FanControlBlockContent> shown_;

  TextLabel* name_;
  TextLabel* speed_;
  Badge* badge_;
  Slider* slider_;
  TextLabel* percentage_;
  Button* fullBlast_;
  Button* automatic_;
};

} // namespace ventolith::ui
