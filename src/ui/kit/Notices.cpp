#include "ui/kit/Notices.h"

#include "ui/kit/IconView.h"
#include "ui/kit/TextLabel.h"

#include <QAccessible>
#include <QVBoxLayout>

namespace ventolith::ui {

Banner::Banner(const Theme& theme, Kind kind, Symbol symbol, QWidget* parent)
    : Surface(theme, kind == Kind::warning ? surfaces::warningBanner : surfaces::neutralBanner, parent),
      row_(new QHBoxLayout(this)),
      column_(new QVBoxLayout),
      title_(new TextLabel(theme, TextRole::bodyStrong, &Palette::primaryText)),
      text_(new TextLabel(theme, TextRole::secondary, &Palette::secondaryText)) {
  constexpr int iconSize = 22;
  row_->setContentsMargins(metrics::bannerPaddingHorizontal, metrics::bannerPaddingVertical,
                           metrics::bannerPaddingHorizontal, metrics::bannerPaddingVertical);
  row_->setSpacing(metrics::space12);
  auto* icon = new IconView(theme, symbol, iconSize,
                            kind == Kind::warning ? &Palette::warning : &Palette::secondaryText);
  row_->addWidget(icon, 0, kind == Kind::warning ? Qt::AlignTop : Qt::AlignVCenter);
  row_->addLayout(column_, 1);
  column_->setSpacing(kind == Kind::warning ? metrics::space4 : metrics::space2);
  for (TextLabel* label : {title_, text_}) {
    label->setFit(Fit::wrapped);
    column_->addWidget(label);
  }
}

void Banner::setText(const QString& title, const QString& text) {
  title_->setText(title);
  text_->setText(text);
  setAccessibleName(title);
  setAccessibleDescription(text);
}

void Banner::setButton(QWidget* button, ButtonPlace place) {
  if (place == ButtonPlace::beside) {
    row_->addSpacing(metrics::space8);
    row_->addWidget(button, 0, Qt::AlignVCenter);
    return;
  }
  column_->addSpacing(metrics::space8);
  column_->addWidget(button, 0, Qt::AlignLeft);
}

ErrorStrip::ErrorStrip(const Theme& theme, QWidget* parent)
    : Surface(theme, surfaces::error, parent),
      text_(new TextLabel(theme, TextRole::secondary, &Palette::danger)) {
  constexpr int iconSize = 16;
  auto* row = new QHBoxLayout(this);
  row->setContentsMargins(metrics::errorPadding, metrics::errorPadding, metrics::errorPadding,
                          metrics::errorPadding);
  row->setSpacing(metrics::space8);
  row->addWidget(new IconView(theme, Symbol::warningTriangle, iconSize, &Palette::danger), 0, Qt::AlignTop);
  text_->setFit(Fit::wrapped);
  row->addWidget(text_, 1);
  hide();
}

void ErrorStrip::setText(const QString& text) {
  if (text == text_->text()) return;
  text_->setText(text);
  setAccessibleName(text);
  setVisible(!text.isEmpty());
  if (text.isEmpty()) return;
  QAccessibleEvent alert(this, QAccessible::Alert); // Read out: nobody looks for it.
  QAccessible::updateAccessibility(&alert);
}

EmptyState::EmptyState(const Theme& theme, Symbol symbol, QWidget* parent)
    : QWidget(parent),
      column_(new QVBoxLayout(this)),
      heading_(new TextLabel(theme, TextRole::windowTitle, &Palette::primaryText)),
      text_(new TextLabel(theme, TextRole::body, &Palette::secondaryText)) {
  constexpr int iconSize = 44, iconGap = 14, textWidth = 360;
  column_->setContentsMargins(0, 0, 0, 0);
  column_->setSpacing(0);
  column_->addStretch();
  column_->addWidget(new IconView(theme, symbol, iconSize, &Palette::tertiaryText), 0, Qt::AlignHCenter);
  column_->addSpacing(iconGap);
  column_->addWidget(heading_, 0, Qt::AlignHCenter);
  column_->addSpacing(metrics::space4);
  text_->setFit(Fit::wrapped);
  text_->setMaximumWidth(textWidth);
  text_->setAlignment(Qt::AlignHCenter | Qt::AlignTop);
  column_->addWidget(text_, 0, Qt::AlignHCenter);
  column_->addStretch();
}

void EmptyState::setText(const QString& heading, const QString& text) {
  heading_->setText(heading);
  text_->setText(text);
}

void EmptyState::setButton(QWidget* button) {
  const int last = column_->count() - 1; // The stretch below.
  column_->insertWidget(last, button, 0, Qt::AlignHCenter);
  column_->insertSpacing(last, metrics::space16);
}

EmptyLine::EmptyLine(const Theme& theme, const QString& text, QWidget* parent) : QWidget(parent) {
  auto* column = new QVBoxLayout(this);
  column->setContentsMargins(0, metrics::space24, 0, metrics::space24);
  auto* label = new TextLabel(theme, TextRole::body, &Palette::secondaryText);
  label->setFit(Fit::wrapped);
  label->setAlignment(Qt::AlignHCenter | Qt::AlignTop);
  label->setText(text);
  column->addWidget(label);
}

} // namespace ventolith::ui
