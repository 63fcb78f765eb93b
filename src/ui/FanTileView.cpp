#include "ui/FanTileView.h"

#include "ui/KitValues.h"
#include "ui/kit/IconView.h"

#include <QHBoxLayout>

#include <cmath>

namespace ventolith::ui {

namespace {

TextLabel* elided(TextLabel* label) {
  label->setFit(Fit::elided);
  return label;
}

Button* smallButton(const Theme& theme, Symbol symbol, const QString& title) {
  auto* button = new Button(theme, ButtonKind::bordered, ButtonSize::small);
  button->setSymbol(symbol);
  button->setTitle(title);
  return button;
}

int descent(TextRole role) {
  const TextLine line(QStringLiteral("0"), role);
  return static_cast<int>(std::lround(line.height() - line.baseline()));
}

} // namespace

FanTileView::FanTileView(const ViewContext& context, const core::Fan& fan, QWidget* parent)
    : Surface(context.theme, surfaces::tile, parent),
      context_(context),
      fan_(fan),
      name_(elided(new TextLabel(context.theme, TextRole::bodyStrong, &Palette::primaryText))),
      modeBadge_(new Badge(context.theme)),
      gauge_(new Gauge(context.theme, Symbol::fan)),
      speed_(new TextLabel(context.theme, TextRole::rpm, &Palette::primaryText)),
      range_(elided(new TextLabel(context.theme, TextRole::caption, &Palette::tertiaryText))),
      statusLine_(elided(new TextLabel(context.theme, TextRole::secondary, &Palette::secondaryText))),
      controlTitle_(elided(new TextLabel(context.theme, TextRole::smallButton, &Palette::primaryText))),
      percentage_(new TextLabel(context.theme, TextRole::secondary, &Palette::secondaryText)),
      slider_(new Slider(context.theme)),
      fullBlast_(smallButton(context.theme, Symbol::bolt, fanTileTexts().fullBlast)),
      automatic_(smallButton(context.theme, Symbol::uturn, fanTileTexts().automatic)),
      sliderPlace_(*slider_),
      fullBlastPlace_(*fullBlast_) {
  auto* column = new QVBoxLayout(this);
  column->setContentsMargins(metrics::tilePadding, metrics::tilePadding, metrics::tilePadding,
                             metrics::tilePadding);
  column->setSpacing(metrics::space12);
  column->addLayout(header());
  column->addLayout(readout());
  column->addWidget(statusLine_);
  column->addLayout(manualControl());
  column->addLayout(quickActions());
  connectActions();
  refresh(fan);
}

/// Hiding ends a drag while there is still somebody to hear of its end.
FanTileView::~FanTileView() {
  if (isVisible()) hide();
}

QLayout* FanTileView::header() {
  constexpr int icon = 16, gap = 7;
  auto* row = new QHBoxLayout;
  row->setSpacing(gap);
  row->addWidget(new IconView(theme(), Symbol::fan, icon, &Palette::secondaryText));
  row->addWidget(name_, 1);
  row->addWidget(modeBadge_);
  return row;
}

QLayout* FanTileView::readout() {
  constexpr int unitGap = 3, height = 48;
  auto* unit = new TextLabel(theme(), TextRole::rpmUnit, &Palette::secondaryText);
  unit->setContentsMargins(0, 0, 0, descent(TextRole::rpm) - descent(TextRole::rpmUnit)); // On one baseline.
  unit->setText(fanTileTexts().speedUnit);
  auto* figures = new QHBoxLayout;
  figures->setSpacing(unitGap);
  figures->addWidget(speed_);
  figures->addWidget(unit, 0, Qt::AlignBottom);
  figures->addStretch();

  auto* lines = new QVBoxLayout;
  lines->setSpacing(metrics::space4);
  lines->addLayout(figures);
  range_->setDigits(Digits::equal);
  lines->addWidget(range_);
  lines->addStretch();
  auto* row = new QHBoxLayout;
  row->setSpacing(metrics::space12);
  row->addStrut(height);
  row->addWidget(gauge_);
  row->addLayout(lines, 1);
  return row;
}

QLayout* FanTileView::manualControl() {
  constexpr int titleGap = 5;
  percentage_->setDigits(Digits::equal);
  percentage_->setAlignment(Qt::AlignRight);
  auto* title = new QHBoxLayout;
  title->setSpacing(metrics::space8);
  title->addWidget(controlTitle_, 1);
  title->addWidget(percentage_);
  slider_->setSpoken(Slider::Spoken::percentOfTravel);
  auto* column = new QVBoxLayout;
  column->setSpacing(titleGap);
  column->addLayout(title);
  column->addWidget(slider_);
  return column;
}

QLayout* FanTileView::quickActions() {
  auto* row = new QHBoxLayout;
  row->setSpacing(metrics::space8);
  row->addWidget(fullBlast_);
  row->addWidget(automatic_);
  row->addStretch();
  return row;
}

void FanTileView::connectActions() {
  app::AppModel& model = context_.model;
  connect(slider_, &Slider::pressBegan, this, [this, &model] { model.beginManualDrag(fan_); });
  connect(slider_, &Slider::valueChanged, this,
          [this, &model](double rpm) { model.previewSliderRPM(fan_, rpm); });
  connect(slider_, &Slider::pressEnded, this, [this, &model] { model.commitManualRPM(fan_); });
  connect(slider_, &Slider::pressAbandoned, this, [this, &model] { model.abandonManualDrag(fan_); });
  connect(fullBlast_, &Button::clicked, this, [this, &model] { model.setFanFullBlast(fan_); });
  connect(automatic_, &Button::clicked, this, [this, &model] { model.setFanAutomatic(fan_); });
}

FanTileState FanTileView::state() const {
  const app::AppModel& model = context_.model;
  FanTileState state{.fan = fan_,
                     .mode = model.mode(fan_),
                     .sliderValue = model.sliderValue(fan_),
                     .isStopped = model.stoppedFanIDs().contains(fan_.id),
                     .canControlFans = model.canControlFans()};
  if (const auto preset = model.activePreset()) state.activePresetName = preset->name;
  return state;
}

void FanTileView::refresh(const core::Fan& fan) {
  fan_ = fan;
  const FanTileContent content = fanTileContent(state());
  if (content == shown_) return slider_->setValue(content.sliderValue); // The user may have moved it since.
  present(content);
  speak(content);
  shown_ = content;
}

void FanTileView::present(const FanTileContent& content) {
  name_->setText(content.name);
  modeBadge_->setContent(symbolFor(content.badge.symbol), content.badge.label,
                         content.badge.isAccented ? BadgeStyle::strong : BadgeStyle::quiet);
  if (slider_->isPressed())
    gauge_->jumpTo(content.gauge); // Nothing moves beside a knob that is dragged.
  else
    gauge_->setFraction(content.gauge);
  speed_->setText(content.speed);
  range_->setText(content.rangeText);
  statusLine_->setText(content.statusLine);
  controlTitle_->setText(content.controlTitle);
  percentage_->setText(content.percentage);
  slider_->setSpokenText(content.percentage);
  slider_->setRange({.minimum = content.sliderRange.lower, .maximum = content.sliderRange.upper});
  slider_->setValue(content.sliderValue);
  sliderPlace_.setEnabled(content.isSliderEnabled);
  fullBlastPlace_.setEnabled(content.isFullBlastEnabled);
  automatic_->setEnabled(content.isAutoEnabled);
}

/// Several fans have controls of the same titles: each says whose it is.
void FanTileView::speak(const FanTileContent& content) {
  if (!shown_ || content.name != shown_->name) {
    setAccessibleName(content.name);
    for (QWidget* control : {static_cast<QWidget*>(slider_), static_cast<QWidget*>(fullBlast_),
                             static_cast<QWidget*>(automatic_)})
      control->setAccessibleDescription(content.name);
  }
  if (!shown_ || content.controlTitle != shown_->controlTitle)
    slider_->setAccessibleName(content.controlTitle);
  if (!shown_ || content.speed != shown_->speed)
    speed_->setAccessibleName(content.speed + QLatin1Char(' ') + fanTileTexts().speedUnit);
}

} // namespace ventolith::ui
