#include "ui/state/CurveEditingTexts.h"

#include "ui/state/Numbers.h"

#include <QCoreApplication>

namespace ventolith::ui {

namespace {

class Curves {
  Q_DECLARE_TR_FUNCTIONS(Curves)
};

} // namespace

CurveEditingTexts curveEditingTexts() {
  return {
      .title = Curves::tr("Fan Curves"),
      .subtitle =
          Curves::tr("Drag points on the temperature→speed curve to shape exactly how this fan responds."),
      .noFans = Curves::tr("No fans detected"),
      .fan = Curves::tr("Fan"),
      .linkFans = Curves::tr("Link fans"),
      .sourceSensor = Curves::tr("Source sensor"),
      .sourceSensorCaption = Curves::tr("This fan follows this sensor."),
      .temperatureAxis = Curves::tr("Temperature (°C)"),
      .speedAxis = Curves::tr("Fan speed (%)"),
      .safetyOverride = Curves::tr("Safety override"),
      .addPoint = Curves::tr("Add Point"),
      .deletePoint = Curves::tr("Delete Point"),
      .reset = Curves::tr("Reset"),
      .saveAsPreset = Curves::tr("Save as Preset…"),
      .caption = Curves::tr("Curves take effect once fan control is enabled (Dashboard → Enable…)."),
      .popoverHeading = Curves::tr("Save as Preset"),
      .namePlaceholder = Curves::tr("Name"),
      .presetNameDraft = Curves::tr("Custom"),
      .cancel = Curves::tr("Cancel"),
      .save = Curves::tr("Save"),
      .tuning = Curves::tr("Response tuning"),
      .tuningCaption = Curves::tr("Applies to every curve- and rule-driven fan, not just this one."),
      .hysteresis = Curves::tr("Hysteresis"),
      .response = Curves::tr("Response"),
      .slow = Curves::tr("Slow"),
      .fast = Curves::tr("Fast"),
  };
}

QString liveLine(const std::optional<ChartValue>& livePoint) {
  if (!livePoint) return Curves::tr("No live sensor reading yet.");
  return Curves::tr("Live: %1°C → %2%").arg(cutText(livePoint->celsius), cutText(livePoint->percent));
}

QString liveLabelText(ChartValue livePoint) {
  return Curves::tr("%1°C · %2%").arg(cutText(livePoint.celsius), cutText(livePoint.percent));
}

QString hysteresisText(double celsius) {
  return Curves::tr("%1 °C").arg(fixedText(celsius, 1));
}

QString responseWord(double alpha) {
  if (alpha < 0.34) return Curves::tr("Slow");
  if (alpha < 0.67) return Curves::tr("Medium");
  return Curves::tr("Fast");
}

QString spokenPointName(std::size_t place, std::size_t count) {
  return Curves::tr("Point %1 of %2").arg(QString::number(place + 1), QString::number(count));
}

QString spokenPointValue(const core::CurvePoint& point) {
  return Curves::tr("%1°C, %2%").arg(roundedText(point.celsius), roundedText(point.percent));
}

PickerContent<core::FanID> fanPicker(const core::SensorSnapshot& snapshot,
                                     std::optional<core::FanID> selected) {
  PickerContent<core::FanID> picker;
  for (const core::Fan& fan : snapshot.fans)
    picker.entries.push_back({fan.id, utf8Text(fan.name)});
  if (selected) picker.select(*selected);
  return picker;
}

PickerContent<std::optional<std::string>> sourceSensorPicker(const core::SensorSnapshot& snapshot,
                                                             const std::optional<std::string>& selected) {
  PickerContent<std::optional<std::string>> picker;
  picker.entries.push_back({std::nullopt, Curves::tr("Hottest")});
  for (const core::TempSensor& sensor : snapshot.temps)
    picker.entries.push_back({sensor.id(), utf8Text(sensor.name)});
  picker.select(selected);
  return picker;
}

} // namespace ventolith::ui
