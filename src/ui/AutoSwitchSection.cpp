#include "ui/AutoSwitchSection.h"

#include "ui/kit/IconView.h"
#include "ui/kit/Surface.h"
#include "ui/kit/Switch.h"
#include "ui/kit/TextLabel.h"

#include <QHBoxLayout>
#include <QVBoxLayout>

namespace ventolith::ui {

using app::AppModelField;

namespace {

constexpr int pickerWidth = 180;
constexpr int switchRow = 24, pickerRow = 28; // Heights.
constexpr int belowSwitch = 10, aroundDivider = 8, aboveHelp = 14, aboveCurrently = 4;
constexpr int widestHelp = 580;

void fill(AutoSwitchSection::PresetChoice& picker, const PresetPicker& content,
          const std::optional<core::UUID>& chosen) {
  std::vector<AutoSwitchSection::PresetChoice::Choice> choices;
  for (const auto& entry : content.entries)
    choices.push_back({entry.value, entry.title});
  picker.setChoices(std::move(choices));
  picker.setChosen(chosen);
}

} // namespace

AutoSwitchSection::AutoSwitchSection(const ViewContext& context, QWidget* parent)
    : ModelView(context, {AppModelField::autoSwitch, AppModelField::presets, AppModelField::powerSource},
                parent) {
  const AutoSwitchTexts texts = autoSwitchTexts();
  makeControls(texts);
  layOut(texts);
  refresh({});
}

void AutoSwitchSection::makeControls(const AutoSwitchTexts& texts) {
  enabledSwitch_ = new Switch(theme());
  enabledSwitch_->setAccessibleName(texts.switchLabel);
  onBattery_ = new PresetChoice(theme());
  onAC_ = new PresetChoice(theme());
  onBattery_->setLabel(texts.onBattery);
  onAC_->setLabel(texts.onAC);
  for (Picker* picker : {static_cast<Picker*>(onBattery_), static_cast<Picker*>(onAC_)}) {
    picker->setPreferredWidth(pickerWidth);
    picker->setMaximumWidth(pickerWidth);
  }
  currently_ = new TextLabel(theme(), TextRole::caption, &Palette::tertiaryText);
  currently_->setFit(Fit::elided);

  connect(enabledSwitch_, &QAbstractButton::clicked, this,
          [this](bool isOn) { model().setAutoSwitch(withAutoSwitch(model().autoSwitch(), isOn)); });
  onBattery_->onChosen(this, [this](const std::optional<core::UUID>& preset) {
    model().setAutoSwitch(withOnBattery(model().autoSwitch(), preset));
  });
  onAC_->onChosen(this, [this](const std::optional<core::UUID>& preset) {
    model().setAutoSwitch(withOnAC(model().autoSwitch(), preset));
  });
}

void AutoSwitchSection::layOut(const AutoSwitchTexts& texts) {
  auto* card = new Card(theme());
  card->setTitle(texts.heading);
  QVBoxLayout& column = *card->content();
  const auto addDivider = [&](int above) {
    column.addSpacing(above);
    column.addWidget(new Divider(theme(), Qt::Horizontal));
    column.addSpacing(aroundDivider);
  };
  addRow(column, texts.switchLabel, enabledSwitch_, switchRow);
  addDivider(belowSwitch);
  addRow(column, texts.onBattery, onBattery_, pickerRow);
  addDivider(aroundDivider);
  addRow(column, texts.onAC, onAC_, pickerRow);
  column.addSpacing(aboveHelp);

  auto* help = new TextLabel(theme(), TextRole::secondary, &Palette::secondaryText);
  help->setFit(Fit::wrapped);
  help->setMaximumWidth(widestHelp);
  help->setText(texts.caption);
  column.addWidget(help);
  column.addSpacing(aboveCurrently);
  column.addWidget(currently_);

  auto* all = new QVBoxLayout(this);
  all->setContentsMargins(0, 0, 0, 0);
  all->addWidget(card);
}

void AutoSwitchSection::addRow(QVBoxLayout& column, const QString& text, QWidget* control, int height) const {
  auto* row = new QHBoxLayout;
  row->setSpacing(metrics::space12);
  row->addStrut(height);
  auto* label = new TextLabel(theme(), TextRole::body, &Palette::primaryText);
  label->setFit(Fit::elided);
  label->setText(text);
  row->addWidget(label, 1, Qt::AlignVCenter);
  row->addWidget(control, 0, Qt::AlignVCenter);
  column.addLayout(row);
}

std::vector<QWidget*> AutoSwitchSection::tabStops() {
  return {enabledSwitch_, onBattery_, onAC_};
}

void AutoSwitchSection::refresh(Fields) {
  const core::AutoSwitchSettings& settings = model().autoSwitch();
  const AutoSwitchContent content = autoSwitchContent(settings, model().presets(), model().powerSource());
  enabledSwitch_->setChecked(content.isOn);
  fill(*onBattery_, content.onBattery, settings.onBatteryPresetID);
  fill(*onAC_, content.onAC, settings.onACPresetID);
  onBattery_->setEnabled(content.arePickersEnabled);
  onAC_->setEnabled(content.arePickersEnabled);
  currently_->setText(content.currently);
}

} // namespace ventolith::ui
