#include "ui/SavePresetForm.h"

#include "ui/kit/Button.h"
#include "ui/kit/Metrics.h"
#include "ui/kit/TextField.h"
#include "ui/kit/TextLabel.h"
#include "ui/state/CurveEditingTexts.h"

#include <QHBoxLayout>
#include <QVBoxLayout>

namespace ventolith::ui {

namespace {

constexpr int fieldWidth = 220;

Button* makeButton(const Theme& theme, ButtonKind kind, const QString& title) {
  auto* button = new Button(theme, kind, ButtonSize::normal);
  button->setTitle(title);
  return button;
}

} // namespace

SavePresetForm::SavePresetForm(const Theme& theme, QWidget* parent)
    : QWidget(parent), field_(new TextField(theme)) {
  const CurveEditingTexts texts = curveEditingTexts();
  auto* heading = new TextLabel(theme, TextRole::cardTitle, &Palette::primaryText);
  heading->setText(texts.popoverHeading);
  field_->setPlaceholderText(texts.namePlaceholder);
  field_->setAccessibleName(texts.namePlaceholder);
  field_->setFixedWidth(fieldWidth);
  Button* cancel = makeButton(theme, ButtonKind::bordered, texts.cancel);
  Button* save = makeButton(theme, ButtonKind::prominent, texts.save);

  auto* column = new QVBoxLayout(this);
  column->setContentsMargins(0, 0, 0, 0);
  column->setSpacing(metrics::space12);
  column->addWidget(heading);
  column->addWidget(field_);
  auto* buttons = new QHBoxLayout;
  buttons->setSpacing(metrics::space8);
  buttons->addStretch();
  buttons->addWidget(cancel);
  buttons->addWidget(save);
  column->addLayout(buttons);

  // Not only what is typed: assistive technology sets the whole text.
  connect(field_, &QLineEdit::textChanged, this, &SavePresetForm::nameEdited);
  connect(field_, &QLineEdit::returnPressed, this, &SavePresetForm::submitted);
  connect(cancel, &QPushButton::clicked, this, &SavePresetForm::cancelled);
  connect(save, &QPushButton::clicked, this, &SavePresetForm::submitted);
}

void SavePresetForm::begin(const QString& name) {
  field_->setText(name);
  field_->selectAll();
}

} // namespace ventolith::ui
