#include "ui/state/CurveEditing.h"

#include "app/ControlActions.h"
#include "ui/state/CurveEditingTexts.h"

#include <algorithm>
#include <utility>

namespace ventolith::ui {

namespace {

// The rate limit that belongs to the ends of the response slider, RPM per tick.
constexpr double slowestDeltaRPM = 200;
constexpr double fastestDeltaRPM = 1000;

std::vector<core::FanID> allFanIDs(const core::SensorSnapshot& snapshot) {
  std::vector<core::FanID> ids;
  for (const core::Fan& fan : snapshot.fans)
    ids.push_back(fan.id);
  return ids;
}

bool isBlank(QChar character) {
  return character == QLatin1Char(' ') || character == QLatin1Char('\t');
}

QString withoutBlanksAround(QString text) {
  while (!text.isEmpty() && isBlank(text.back()))
    text.chop(1);
  const auto first = std::find_if_not(text.cbegin(), text.cend(), isBlank);
  return text.sliced(first - text.cbegin());
}

} // namespace

CurveEditing::CurveEditing(CurveEditingModel& model) : model_(model), editingCurve_(app::defaultCurve()) {}

void CurveEditing::onFirstAppear() {
  selectFirstFanIfNone();
  loadEditingCurve();
  const core::ControlTuning& tuning = model_.activePlan().tuning;
  hysteresis_ = tuning.hysteresisCelsius;
  responseAlpha_ = tuning.emaAlpha;
}

bool CurveEditing::takeSnapshot() {
  if (selectedFanID_ || !hasFans()) return false;
  selectFirstFanIfNone();
  loadEditingCurve();
  return true;
}

void CurveEditing::selectFirstFanIfNone() {
  if (!selectedFanID_ && hasFans()) selectedFanID_ = model_.snapshot().fans.front().id;
}

void CurveEditing::loadEditingCurve() {
  if (!selectedFanID_) {
    editingCurve_ = app::defaultCurve();
    return;
  }
  editingCurve_ = model_.curve(*selectedFanID_).value_or(app::defaultCurve());
  editingCurve_.points = sorted(std::move(editingCurve_.points));
  forgetPoints();
}

void CurveEditing::forgetPoints() {
  draggingPointID_.reset();
  selectedPointID_.reset();
}

void CurveEditing::commit() {
  if (!selectedFanID_) return;
  const std::vector<core::FanID> targets =
      linked_ ? allFanIDs(model_.snapshot()) : std::vector{*selectedFanID_};
  model_.setFanCurve(editingCurve_, targets);
}

void CurveEditing::chooseFan(core::FanID fan) {
  selectedFanID_ = fan;
  loadEditingCurve();
}

void CurveEditing::chooseSensor(std::optional<std::string> sensorID) {
  editingCurve_.sourceSensorID = std::move(sensorID);
  commit();
}

std::vector<ChartValue> CurveEditing::curveSamples() const {
  return samples(editingCurve_, xDomain, celsiusStep);
}

std::optional<double> CurveEditing::sourceTemp() const {
  const core::SensorSnapshot& snapshot = model_.snapshot();
  if (!editingCurve_.sourceSensorID) {
    const core::TempSensor* const hottest = snapshot.hottest();
    return hottest != nullptr ? std::optional(hottest->celsius) : std::nullopt;
  }
  for (const core::TempSensor& sensor : snapshot.temps) {
    if (sensor.id() == *editingCurve_.sourceSensorID) return sensor.celsius;
  }
  return std::nullopt;
}

std::optional<ChartValue> CurveEditing::liveDataPoint() const {
  const std::optional<double> celsius = sourceTemp();
  if (!celsius) return std::nullopt;
  return ChartValue{.celsius = *celsius, .percent = editingCurve_.percent(*celsius)};
}

std::optional<core::UUID> CurveEditing::pointAt(QPointF location, const ChartGeometry& chart) const {
  const std::optional<ChartValue> value = chart.value(location);
  return value ? nearestPoint(*value, editingCurve_.points) : std::nullopt;
}

/// A drag that began on empty ground takes the first point that it comes near.
bool CurveEditing::handleDrag(QPointF location, const ChartGeometry& chart) {
  const std::optional<ChartValue> value = chart.value(location);
  if (!value) return false;
  const bool picksUp = !draggingPointID_;
  if (picksUp) {
    draggingPointID_ = nearestPoint(*value, editingCurve_.points);
    if (!draggingPointID_) return false;
    selectedPointID_ = draggingPointID_;
  }
  const std::optional<std::size_t> place = placeOf(*draggingPointID_, editingCurve_.points);
  if (!place) return picksUp;
  const bool moves = replacePoint(*place, draggedPoint(*value, *place, editingCurve_.points));
  return picksUp || moves;
}

bool CurveEditing::replacePoint(std::size_t place, const core::CurvePoint& point) {
  if (editingCurve_.points[place] == point) return false;
  editingCurve_.points[place] = point;
  return true;
}

void CurveEditing::endDrag() {
  draggingPointID_.reset();
  commit();
}

std::optional<std::size_t> CurveEditing::selectedPlace() const {
  return selectedPointID_ ? placeOf(*selectedPointID_, editingCurve_.points) : std::nullopt;
}

std::optional<core::CurvePoint> CurveEditing::selectedPoint() const {
  const std::optional<std::size_t> place = selectedPlace();
  return place ? std::optional(editingCurve_.points[*place]) : std::nullopt;
}

bool CurveEditing::nudgeSelectedPoint(Nudge nudge) {
  const std::optional<std::size_t> place = selectedPlace();
  return place && replacePoint(*place, nudgedPoint(nudge, *place, editingCurve_.points));
}

bool CurveEditing::selectPoint(Direction direction) {
  const CurvePoints& points = editingCurve_.points;
  if (points.empty()) return false;
  const std::optional<std::size_t> place = selectedPlace();
  const bool isNext = direction == Direction::next;
  if (!place) {
    selectedPointID_ = isNext ? points.front().id : points.back().id;
    return true;
  }
  if (isNext ? *place + 1 == points.size() : *place == 0) return false;
  selectedPointID_ = points[isNext ? *place + 1 : *place - 1].id;
  return true;
}

void CurveEditing::selectPoint(std::size_t place) {
  if (place < editingCurve_.points.size()) selectedPointID_ = editingCurve_.points[place].id;
}

void CurveEditing::addPoint() {
  core::CurvePoint point;
  point.celsius = temperatureOfNewPoint(editingCurve_.points);
  point.percent = editingCurve_.percent(point.celsius);
  selectedPointID_ = point.id;
  editingCurve_.points.push_back(point);
  editingCurve_.points = sorted(std::move(editingCurve_.points));
  commit();
}

bool CurveEditing::canDeleteSelected() const {
  const std::optional<std::size_t> place = selectedPlace();
  return place && canDelete(*place, editingCurve_.points);
}

void CurveEditing::deleteSelectedPoint() {
  if (!canDeleteSelected()) return;
  std::erase_if(editingCurve_.points, [this](const auto& point) { return point.id == *selectedPointID_; });
  selectedPointID_.reset();
  commit();
}

void CurveEditing::resetCurve() {
  editingCurve_ = app::defaultCurve();
  forgetPoints();
  commit();
}

void CurveEditing::beginSavingPreset() {
  presetNameDraft_ = curveEditingTexts().presetNameDraft;
  isSavingPreset_ = true;
}

void CurveEditing::setPresetNameDraft(QString name) {
  presetNameDraft_ = std::move(name);
}

void CurveEditing::savePreset() {
  const QString name = withoutBlanksAround(presetNameDraft_);
  if (name.isEmpty()) return;
  commit();
  model_.newPresetFromCurrent(name.toStdString());
  isSavingPreset_ = false;
}

void CurveEditing::commitTuning() {
  core::ControlTuning tuning = model_.activePlan().tuning;
  tuning.emaAlpha = responseAlpha_;
  tuning.hysteresisCelsius = hysteresis_;
  tuning.maxDeltaRPMPerTick = responseAlpha_ * (fastestDeltaRPM - slowestDeltaRPM) + slowestDeltaRPM;
  model_.setTuning(tuning);
}

} // namespace ventolith::ui
