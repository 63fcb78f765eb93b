#include "ui/FanControlBlock.h"

#include "ui/KitValues.h"
#include "ui/kit/Badge.h"
#include "ui/kit/Button.h"
#include "ui/kit/Metrics.h"
#include "ui/kit/Slider.h"
#include "ui/kit/TextLabel.h"

#include <QVBoxLayout>

namespace ventolith::ui {

namespace {

Button* symbolButton(const Theme& theme, Symbol symbol) {
  constexpr int side = 15;
  auto* button = new Button(theme, ButtonKind::borderless, ButtonSize::normal);
  button->setSymbol(symbol);
  button->setSymbolSize(side);
  button->setSymbolAlignment(Qt::AlignTrailing);
  return button;
}

} // namespace

FanControlBlock::FanControlBlock(const ViewContext& context, const core::Fan& fan, QWidget* parent)
    : QWidget(parent),
      model_(context.model),
      fan_(fan),
      name_(new TextLabel(context.theme, TextRole::bodyStrong, &Palette::primaryText)),
      speed_(new TextLabel(context.theme, TextRole::secondary, &Palette::secondaryText)),
      badge_(new Badge(context.theme, BadgeSize::small)),
      slider_(new Slider(context.theme)),
      percentage_(new TextLabel(context.theme, TextRole::caption, &Palette::secondaryText)),
      fullBlast_(symbolButton(context.theme, Symbol::bolt)),
      automatic_(symbolButton(context.theme, Symbol::uturn)) {
  constexpr int rowGap = 6;
  auto* column = new QVBoxLayout(this);
  column->setContentsMargins(0, 0, 0, 0);
  column->setSpacing(rowGap);
  column->addLayout(makeReading());
  column->addLayout(makeControls());
  connectActions();
  refresh(fan);
}

/// Hiding ends a drag while there is still somebody to hear of its end.
FanControlBlock::~FanControlBlock() {
  hide();
}

QLayout* FanControlBlock::makeReading() {
  name_->setFit(Fit::elided);
  speed_->setDigits(Digits::equal);
  auto* row = new QHBoxLayout;
  row->setSpacing(metrics::space8);
  row->addWidget(name_);
  row->addWidget(speed_);
  row->addStretch();
  row->addWidget(badge_);
  return row;
}

QLayout* FanControlBlock::makeControls() {
  constexpr int percentageWidth = 30, sliderGap = 6, buttonGap = 3;
  slider_->setSpoken(Slider::Spoken::percentOfTravel);
  percentage_->setDigits(Digits::equal);
  percentage_->setFixedWidth(percentageWidth);
  percentage_->setAlignment(Qt::AlignTrailing | Qt::AlignVCenter);
  auto* row = new QHBoxLayout;
  row->setSpacing(0);
  row->addWidget(slider_, 1);
  row->addSpacing(sliderGap);
  row->addWidget(percentage_);
  row->addSpacing(buttonGap);
  row->addWidget(fullBlast_);
  row->addWidget(automatic_);
  return row;
}

void FanControlBlock::connectActions() {
  connect(slider_, &Slider::pressBegan, this, [this] { model_.beginManualDrag(fan_); });
  connect(slider_, &Slider::valueChanged, this, [this](double rpm) { model_.previewSliderRPM(fan_, rpm); });
  connect(slider_, &Slider::pressEnded, this, [this] { model_.commitManualRPM(fan_); });
  connect(slider_, &Slider::pressAbandoned, this, [this] { model_.abandonManualDrag(fan_); });
  connect(fullBlast_, &Button::clicked, this, [this] { model_.setFanFullBlast(fan_); });
  connect(automatic_, &Button::clicked, this, [this] { model_.setFanAutomatic(fan_); });
}

FanControlBlockState FanControlBlock::state() const {
  return {.fan = fan_,
          .mode = model_.mode(fan_),
          .sliderValue = model_.sliderValue(fan_),
          .canControlFans = model_.canControlFans(),
          .isHelperActive = model_.isHelperActive()};
}

void FanControlBlock::refresh(const core::Fan& fan) {
  fan_ = fan;
  const FanControlBlockContent content = fanControlBlockContent(state());
  if (content == shown_) return;
  present(content);
  speak(content);
  shown_ = content;
}

void FanControlBlock::present(const FanControlBlockContent& content) {
  name_->setText(content.name);
  speed_->setText(content.speed);
  badge_->setContent(symbolFor(content.badge.symbol), content.badge.label,
                     content.badge.isAccented ? BadgeStyle::strong : BadgeStyle::quiet);
  slider_->setRange({.minimum = content.sliderRange.lower, .maximum = content.sliderRange.upper});
  slider_->setValue(content.sliderValue);
  slider_->setEnabled(content.isSliderEnabled);
  percentage_->setText(content.percentage);
  fullBlast_->setEnabled(content.isFullBlastEnabled);
  fullBlast_->setToolTip(content.fullBlastToolTip);
  automatic_->setEnabled(content.isAutoEnabled);
  automatic_->setToolTip(content.autoToolTip);
}

void FanControlBlock::speak(const FanControlBlockContent& content) {
  slider_->setSpokenText(content.spokenSliderValue);
  if (shown_ && content.name == shown_->name) return;
  setAccessibleName(content.name);
  slider_->setAccessibleName(content.spokenSliderName);
  slider_->setAccessibleDescription(content.spokenSliderHint);
  fullBlast_->setAccessibleName(content.spokenFullBlast);
  automatic_->setAccessibleName(content.spokenAuto);
}

} // namespace ventolith::ui
