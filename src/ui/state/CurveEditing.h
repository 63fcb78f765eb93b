// The curve editor without its widgets: a private copy of one fan's curve that the user shapes, and the
// moments at which it goes to the model.
#pragma once

#include "core/FanControlPlan.h"
#include "core/SensorSnapshot.h"
#include "ui/state/ChartGeometry.h"
#include "ui/state/CurveShaping.h"

#include <QPointF>
#include <QString>

#include <optional>
#include <string>
#include <vector>

namespace ventolith::ui {

/// What the editor needs of the model. Outlives the editor.
class CurveEditingModel {
public:
  CurveEditingModel() = default;
  CurveEditingModel(const CurveEditingModel&) = delete;
  CurveEditingModel& operator=(const CurveEditingModel&) = delete;
  virtual ~CurveEditingModel() = default;

  [[nodiscard]] virtual const core::SensorSnapshot& snapshot() const = 0;
  [[nodiscard]] virtual const core::FanControlPlan& activePlan() const = 0;
  /// None for a fan that follows no curve.
  [[nodiscard]] virtual std::optional<core::FanCurve> curve(core::FanID fan) const = 0;

  virtual void setFanCurve(const core::FanCurve& curve, const std::vector<core::FanID>& fanIDs) = 0;
  virtual void setTuning(const core::ControlTuning& tuning) = 0;
  virtual void newPresetFromCurrent(const std::string& name) = 0;
};

inline constexpr double hysteresisMaximum = 6; // Degrees Celsius; from 0.
inline constexpr double hysteresisStep = 0.5;

/// Made anew for each visit of the screen. While a gesture lasts it touches the model not at all: the curve
/// goes there when the gesture ends, and the model's own changes of a curve show at the next loading.
class CurveEditing {
public:
  explicit CurveEditing(CurveEditingModel& model);

  // What the screen shows.
  [[nodiscard]] std::optional<core::FanID> selectedFanID() const { return selectedFanID_; }
  [[nodiscard]] bool linked() const { return linked_; }
  /// Its points stand in ascending temperature.
  [[nodiscard]] const core::FanCurve& editingCurve() const { return editingCurve_; }
  [[nodiscard]] const std::optional<core::UUID>& draggingPointID() const { return draggingPointID_; }
  [[nodiscard]] const std::optional<core::UUID>& selectedPointID() const { return selectedPointID_; }
  /// The selected point, for its halo; none if it is gone.
  [[nodiscard]] std::optional<core::CurvePoint> selectedPoint() const;
  [[nodiscard]] std::optional<std::size_t> selectedPlace() const;
  [[nodiscard]] bool isSavingPreset() const { return isSavingPreset_; }
  [[nodiscard]] const QString& presetNameDraft() const { return presetNameDraft_; }
  [[nodiscard]] double hysteresis() const { return hysteresis_; }       // Degrees Celsius.
  [[nodiscard]] double responseAlpha() const { return responseAlpha_; } // 0 to 1.

  /// A second fan is what makes a choice of fans, and the link between them.
  [[nodiscard]] bool showsFanChoice() const { return model_.snapshot().fans.size() >= 2; }
  [[nodiscard]] bool hasFans() const { return !model_.snapshot().fans.empty(); }
  [[nodiscard]] bool canDeleteSelected() const;
  [[nodiscard]] std::vector<ChartValue> curveSamples() const;
  /// The temperature that the curve sees now; none without a sensor that gives it.
  [[nodiscard]] std::optional<double> sourceTemp() const;
  /// Where the curve works now; none without a temperature.
  [[nodiscard]] std::optional<ChartValue> liveDataPoint() const;

  // What the user does.
  /// The screen comes into view.
  void onFirstAppear();
  /// The model has a new snapshot. True when the curve was loaded for it.
  bool takeSnapshot();
  void chooseFan(core::FanID fan);
  void chooseSensor(std::optional<std::string> sensorID); // None is the hottest.
  void setLinked(bool linked) { linked_ = linked; }

  /// Each change of a drag, the press included, at a place on the chart. True when anything changed.
  bool handleDrag(QPointF location, const ChartGeometry& chart);
  /// What a press at that place would pick up.
  [[nodiscard]] std::optional<core::UUID> pointAt(QPointF location, const ChartGeometry& chart) const;
  /// The end of a drag, and of a press that moved nothing.
  void endDrag();

  /// By keyboard: moves the selected point by one step, as a drag does. `endDrag` ends it. True when
  /// anything changed.
  bool nudgeSelectedPoint(Nudge nudge);
  enum class Direction { next, previous };
  /// The next warmer or cooler point, from none the first or the last. False, and nothing changed, where
  /// there is no further point.
  bool selectPoint(Direction direction);
  /// The point at that place, if there is one.
  void selectPoint(std::size_t place);

  void addPoint();
  void deleteSelectedPoint();
  void resetCurve();

  void beginSavingPreset();
  void setPresetNameDraft(QString name);
  void cancelSavingPreset() { isSavingPreset_ = false; }
  /// Nothing for a name of blanks alone: the popover stays.
  void savePreset();

  void setHysteresis(double celsius) { hysteresis_ = celsius; }
  void setResponseAlpha(double alpha) { responseAlpha_ = alpha; }
  /// The user lets go of one of the two sliders.
  void commitTuning();

private:
  void selectFirstFanIfNone();
  void loadEditingCurve();
  void forgetPoints();
  void commit();
  bool replacePoint(std::size_t place, const core::CurvePoint& point);

  CurveEditingModel& model_;
  std::optional<core::FanID> selectedFanID_;
  bool linked_ = false;
  core::FanCurve editingCurve_;
  std::optional<core::UUID> draggingPointID_;
  std::optional<core::UUID> selectedPointID_;
  bool isSavingPreset_ = false;
  QString presetNameDraft_;
  double hysteresis_ = core::ControlTuning{}.hysteresisCelsius;
  double responseAlpha_ = core::ControlTuning{}.emaAlpha;
};

} // namespace ventolith::ui
