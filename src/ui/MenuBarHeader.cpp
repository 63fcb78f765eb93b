#include "ui/MenuBarHeader.h"

#include "ui/KitValues.h"
#include "ui/kit/IconView.h"
#include "ui/kit/Metrics.h"
#include "ui/kit/TextLabel.h"

#include <QHBoxLayout>

#include <algorithm>

namespace ventolith::ui {

namespace {

constexpr int chipDot = 6, chipGap = 4;

} // namespace

MenuBarHeader::MenuBarHeader(const Theme& theme, QWidget* parent)
    : QWidget(parent),
      dot_(new Dot(8, Qt::transparent)),
      symbol_(new IconView(theme, Symbol::thermometer, 16, &Palette::secondaryText)),
      title_(new TextLabel(theme, TextRole::bodyStrong, &Palette::primaryText)),
      statusWord_(new TextLabel(theme, TextRole::caption, &Palette::secondaryText)),
      temperature_(new TextLabel(theme, TextRole::panelReading, &Palette::primaryText)) {
  constexpr int height = 34;
  setFixedHeight(height);
  auto* lines = new QVBoxLayout;
  lines->setSpacing(0);
  for (TextLabel* line : {title_, statusWord_}) {
    line->setFit(Fit::elided);
    lines->addWidget(line);
  }
  temperature_->setDigits(Digits::equal);
  temperature_->setAlignment(Qt::AlignTrailing);
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
  constexpr int height = 16;
  setFixedHeight(height);
  row_->setContentsMargins(0, 0, 0, 0);
  row_->setSpacing(metrics::space12);
  row_->addStretch();
}

SensorChipsRow::Chip SensorChipsRow::addChip() {
  const Chip chip{.all = new QWidget,
                  .dot = new Dot(chipDot, Qt::transparent),
                  .name = new TextLabel(theme_, TextRole::caption, &Palette::secondaryText),
                  .temperature = new TextLabel(theme_, TextRole::axisLabel, &Palette::primaryText)};
  chip.name->setFit(Fit::elided);
  chip.temperature->setDigits(Digits::equal);
  auto* row = new QHBoxLayout(chip.all);
  row->setContentsMargins(0, 0, 0, 0);
  row->setSpacing(0);
  row->addWidget(chip.dot);
  row->addSpacing(chipGap);
  row->addWidget(chip.name);
  row->addSpacing(chipGap);
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
  shareRoom();
}

void SensorChipsRow::resizeEvent(QResizeEvent* event) {
  QWidget::resizeEvent(event);
  shareRoom();
}

/// What the names that are shorter than their share leave goes to the others.
void SensorChipsRow::shareRoom() {
  std::vector<TextLabel*> names;
  int room = width() + metrics::space12;
  for (const Chip& chip : chips_) {
    names.push_back(chip.name);
    room -= chipDot + 2 * chipGap + chip.temperature->sizeHint().width() + metrics::space12;
  }
  std::sort(names.begin(), names.end(), [](const TextLabel* one, const TextLabel* other) {
    return one->sizeHint().width() < other->sizeHint().width();
  });
  auto left = static_cast<int>(names.size());
  for (TextLabel* name : names) {
    const int share = std::max(0, std::min(name->sizeHint().width(), room / left));
    name->setMaximumWidth(share);
    room -= share;
    --left;
  }
}

} // namespace ventolith::ui
