#include "ui/CurveControlsRow.h"

#include "ui/kit/TextLabel.h"
#include "ui/state/CurveEditing.h"
#include "ui/state/CurveEditingTexts.h"

#include <QGridLayout>
#include <QHBoxLayout>

#include <utility>

namespace ventolith::ui {

namespace {

constexpr int fanWidth = 150, fanMaximum = 200;
constexpr int sensorWidth = 180, sensorMaximum = 220;
constexpr int groupGap = 24;
constexpr int labelGap = 8;
constexpr int belowGap = 7;   // To a line that is taller than its box.
constexpr int belowInset = 2; // What stands under a picker begins within its rounded corner.

template <class Value>
std::vector<typename ChoicePicker<Value>::Choice> choicesOf(PickerContent<Value> content) {
  std::vector<typename ChoicePicker<Value>::Choice> choices;
  for (auto& entry : content.entries)
    choices.push_back({std::move(entry.value), std::move(entry.title)});
  return choices;
}

TextLabel* makeLabel(const Theme& theme, TextRole role, const QString& text) {
  auto* label = new TextLabel(theme, role, &Palette::secondaryText);
  label->setText(text);
  return label;
}

/// A picker with its label before it and something else below it.
QWidget* makeGroup(TextLabel* label, Picker* picker, QWidget* below) {
  auto* group = new QWidget;
  auto* grid = new QGridLayout(group);
  grid->setContentsMargins(0, 0, 0, 0);
  grid->setHorizontalSpacing(labelGap);
  grid->setVerticalSpacing(belowGap);
  grid->addWidget(label, 0, 0);
  grid->addWidget(picker, 0, 1);
  auto* inset = new QHBoxLayout;
  inset->setContentsMargins(belowInset, 0, 0, 0);
  inset->addWidget(below);
  inset->addStretch();
  grid->addLayout(inset, 1, 1);
  grid->setRowMinimumHeight(1, CheckBox::lineHeight);
  return group;
}

} // namespace

CurveControlsRow::CurveControlsRow(const Theme& theme, QWidget* parent)
    : QWidget(parent),
      fan_(new ChoicePicker<core::FanID>(theme)),
      link_(new CheckBox(theme)),
      sensor_(new ChoicePicker<SensorID>(theme)) {
  const CurveEditingTexts texts = curveEditingTexts();
  fan_->setLabel(texts.fan);
  fan_->setPreferredWidth(fanWidth);
  fan_->setMaximumWidth(fanMaximum);
  link_->setTitle(texts.linkFans);
  sensor_->setLabel(texts.sourceSensor);
  sensor_->setAccessibleDescription(texts.sourceSensorCaption);
  sensor_->setPreferredWidth(sensorWidth);
  sensor_->setMaximumWidth(sensorMaximum);

  ofFans_ = makeGroup(makeLabel(theme, TextRole::smallButton, texts.fan), fan_, link_);
  auto* row = new QHBoxLayout(this);
  row->setContentsMargins(0, 0, 0, 0);
  row->setSpacing(groupGap);
  row->addWidget(ofFans_);
  row->addWidget(makeGroup(makeLabel(theme, TextRole::smallButton, texts.sourceSensor), sensor_,
                           makeLabel(theme, TextRole::caption, texts.sourceSensorCaption)));
  row->addStretch(1);

  fan_->onChosen(this, [this](core::FanID fan) { Q_EMIT fanChosen(fan); });
  connect(link_, &QCheckBox::clicked, this, &CurveControlsRow::linkChanged);
  sensor_->onChosen(this, [this](const SensorID& sensor) { Q_EMIT sensorChosen(sensor); });
}

void CurveControlsRow::display(const core::SensorSnapshot& snapshot, const CurveEditing& editing) {
  fan_->setChoices(choicesOf(fanPicker(snapshot, editing.selectedFanID())));
  fan_->setChosen(editing.selectedFanID());
  link_->setChecked(editing.linked());
  ofFans_->setVisible(editing.showsFanChoice());

  const SensorID& followed = editing.editingCurve().sourceSensorID;
  sensor_->setChoices(choicesOf(sourceSensorPicker(snapshot, followed)));
  sensor_->setChosen(std::optional<SensorID>(std::in_place, followed));
}

} // namespace ventolith::ui
