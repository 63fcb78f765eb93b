#include "ui/MenuBarHeader.h"

#include "ui/KitValues.h"
#include "ui/kit/IconView.h"
#include "ui/kit/Metrics.h"
#include "ui/kit/TextLabel.h"

#include <QHBoxLayout>

namespace ventolith::ui {

MenuBarHeader::MenuBarHeader(const Theme& theme, QWidget* parent)
    : QWidget(parent),
      dot_(new Dot(8, Qt::transparent)),
      symbol_(new IconView(theme, Symbol::thermometer, 16, &Palette::secondaryText)),
      title_(new TextLabel(theme, TextRole::bodyStrong, &Palette::primaryText)),
      statusWord_(new TextLabel(theme, TextRole::caption, &Palette::secondaryText)),
      temperature_(new TextLabel(theme, TextRole::panelReading, &Palette::primaryText)) {
  constexpr int lineGap = 1;
  auto* lines = new QVBoxLayout;
  lines->setSpacing(lineGap);
  for (TextLabel* line : {title_, statusWord_}) {
    line->setFit(Fit::elided);
    lines->addWidget(line);
  }
  temperature_->setDigits(Digits::equal);
  auto* row = new QHBoxLayout(this);
  row->setContentsMargins(0, 0, 0, 0);
  row->setSpacing(metrics::space10);
  row->addWidget(dot_);
  row->addWidget(symbol_);
  row->addLayout(lines, 1);
  row->addWidget(temperature_);
}

void MenuBarHeader::setContent(const PanelHeaderContent& content) {
  if (content == shown_) return;
  shown_ = content;
  const bool hasSensor = content.dot.has_value();
  dot_->setVisible(hasSensor);
  symbol_->setVisible(!hasSensor);
  temperature_->setVisible(hasSensor);
  if (hasSensor)
    dot_->setColor(qColor(*content.dot));
  else
    symbol_->setSymbol(symbolFor(content.symbol));
  title_->setColor(hasSensor ? &Palette::primaryText : &Palette::secondaryText);
  title_->setText(content.title);
  statusWord_->setText(content.statusWord);
  temperature_->setText(content.temperature);
}

SensorChipsRow::SensorChipsRow(const Theme& theme, QWidget* parent)
    : QWidget(parent), theme_(theme), row_(new QHBoxLayout(this)) {
  row_->setContentsMargins(0, 0, 0, 0);
  row_->setSpacing(metrics::space12);
  row_->addStretch();
}

SensorChipsRow::Chip SensorChipsRow::addChip() {
  constexpr int gap = 4;
  const Chip chip{.all = new QWidget,
                  .dot = new Dot(6, Qt::transparent),
                  .name = new TextLabel(theme_, TextRole::caption, &Palette::secondaryText),
                  .temperature = new TextLabel(theme_, TextRole::axisLabel, &Palette::primaryText)};
  chip.name->setFit(Fit::elided);
  chip.temperature->setDigits(Digits::equal);
  auto* row = new QHBoxLayout(chip.all);
  row->setContentsMargins(0, 0, 0, 0);
  row->setSpacing(0);
  row->addWidget(chip.dot);
  row->addSpacing(gap);
  row->addWidget(chip.name);
  row->addSpacing(gap);
  row->addWidget(chip.temperature);
  row_->insertWidget(static_cast<int>(chips_.size()), chip.all);
  chip.all->show();
  return chip;
}

void SensorChipsRow::setChips(const std::vector<SensorChipContent>& chips) {
  for (; chips_.size() > chips.size(); chips_.pop_back())
    delete chips_.back().all;
  while (chips_.size() < chips.size())
    chips_.push_back(addChip());
  for (std::size_t place = 0; place < chips.size(); ++place) {
    const Chip& chip = chips_[place];
    chip.dot->setColor(qColor(chips[place].dot));
    chip.name->setText(chips[place].name);
    chip.temperature->setText(chips[place].temperature);
  }
}

} // namespace ventolith::ui
