// One temperature on the dashboard.
#pragma once

#include "core/SensorSnapshot.h"
#include "ui/kit/IconView.h"
#include "ui/kit/Surface.h"
#include "ui/kit/TextLabel.h"
#include "ui/state/DashboardContent.h"

#include <optional>

namespace ventolith::ui {

class SensorRow final : public Surface {
  Q_OBJECT

public:
  static constexpr int height = 46;

  explicit SensorRow(const Theme& theme, QWidget* parent = nullptr);

  void setSensor(const core::TempSensor& sensor);

private:
  void present();

  core::TempSensor sensor_;
  std::optional<SensorRowContent> shown_;
  Dot* dot_;
  TextLabel* name_;
  TextLabel* detail_;
  TextLabel* reading_;
};

} // namespace ventolith::ui
