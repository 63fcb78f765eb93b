// Which fan the curve editor is about, and which sensor its curve follows.
#pragma once

#include "core/SensorSnapshot.h"
#include "ui/kit/CheckBox.h"
#include "ui/kit/Picker.h"

#include <QWidget>

#include <optional>
#include <string>

namespace ventolith::ui {

class CurveEditing;

/// With one fan there is no fan to choose, and none to link.
class CurveControlsRow final : public QWidget {
  Q_OBJECT

public:
  explicit CurveControlsRow(const Theme& theme, QWidget* parent = nullptr);

  void display(const core::SensorSnapshot& snapshot, const CurveEditing& editing);

Q_SIGNALS:
  void fanChosen(ventolith::core::FanID fan);
  void linkChanged(bool linked);
  void sensorChosen(const std::optional<std::string>& sensorID); // None is the hottest.

private:
  using SensorID = std::optional<std::string>;

  ChoicePicker<core::FanID>* fan_;
  CheckBox* link_;
  ChoicePicker<SensorID>* sensor_;
  QWidget* ofFans_;
};

} // namespace ventolith::ui
