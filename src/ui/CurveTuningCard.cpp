#include "ui/CurveTuningCard.h"

#include "ui/kit/TextLabel.h"
#include "ui/state/CurveEditing.h"
#include "ui/state/CurveEditingTexts.h"
#include "ui/state/ScreenLayout.h"

#include <QHBoxLayout>
#include <QVBoxLayout>

namespace ventolith::ui {

namespace {

constexpr int captionGap = 3;
constexpr int partsGap = 16; // Below the caption.
constexpr int betweenColumns = metrics::space32;
constexpr int betweenRows = metrics::space16;

} // namespace

CurveTuningCard::CurveTuningCard(const Theme& theme, QWidget* parent)
    : Card(theme, parent),
      hysteresis_(makePart(curveEditingTexts().hysteresis,
                           {.minimum = 0, .maximum = hysteresisMaximum, .step = hysteresisStep})),
      response_(makePart(curveEditingTexts().response, {.minimum = 0, .maximum = 1})),
      parts_(new QHBoxLayout) {
  const CurveEditingTexts texts = curveEditingTexts();
  setTitle(Symbol::sliders, texts.tuning);
  layout()->setSpacing(captionGap);
  auto* caption = new TextLabel(theme, TextRole::secondary, &Palette::secondaryText);
  caption->setFit(Fit::wrapped);
  caption->setText(texts.tuningCaption);
  content()->addWidget(caption);
  content()->addSpacing(partsGap);

  auto* ends = new QHBoxLayout;
  for (const QString& end : {texts.slow, texts.fast}) {
    auto* label = new TextLabel(theme, TextRole::caption, &Palette::tertiaryText);
    label->setText(end);
    if (ends->count() > 0) ends->addStretch();
    ends->addWidget(label);
  }
  response_.column->addLayout(ends);
  for (const Part& part : {hysteresis_, response_}) {
    part.column->addStretch();
    parts_->addLayout(part.column, 1);
    connect(part.slider, &Slider::pressEnded, this, &CurveTuningCard::committed);
  }
  content()->addLayout(parts_);
  connect(hysteresis_.slider, &Slider::valueChanged, this, &CurveTuningCard::hysteresisMoved);
  connect(response_.slider, &Slider::valueChanged, this, &CurveTuningCard::responseMoved);
}

CurveTuningCard::Part CurveTuningCard::makePart(const QString& title, const SliderRange& range) const {
  auto* name = new TextLabel(theme(), TextRole::rpmUnit, &Palette::primaryText);
  name->setText(title);
  Part part{.column = new QVBoxLayout,
            .value = new TextLabel(theme(), TextRole::rpmUnit, &Palette::secondaryText),
            .slider = new Slider(theme())};
  part.value->setDigits(Digits::equal);
  part.slider->setRange(range);
  part.slider->setAccessibleName(title);
  auto* titleLine = new QHBoxLayout;
  titleLine->addWidget(name);
  titleLine->addStretch();
  titleLine->addWidget(part.value);
  part.column->setSpacing(metrics::space6);
  part.column->addLayout(titleLine);
  part.column->addWidget(part.slider);
  return part;
}

void CurveTuningCard::show(const Part& part, double value, const QString& text) {
  part.value->setText(text);
  part.slider->setSpokenText(text);
  part.slider->setValue(value);
}

void CurveTuningCard::display(const CurveEditing& editing) {
  show(hysteresis_, editing.hysteresis(), hysteresisText(editing.hysteresis()));
  show(response_, editing.responseAlpha(), responseWord(editing.responseAlpha()));
}

void CurveTuningCard::resizeEvent(QResizeEvent* event) {
  const bool isWide = tuningColumns(width()) > 1;
  parts_->setDirection(isWide ? QBoxLayout::LeftToRight : QBoxLayout::TopToBottom);
  parts_->setSpacing(isWide ? betweenColumns : betweenRows);
  Card::resizeEvent(event);
}

} // namespace ventolith::ui
