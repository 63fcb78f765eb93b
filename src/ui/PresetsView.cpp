#include "ui/PresetsView.h"

#include "ui/AutoSwitchSection.h"
#include "ui/NewPresetCard.h"
#include "ui/PresetCard.h"
#include "ui/kit/AdaptiveGrid.h"
#include "ui/kit/MenuButton.h"
#include "ui/kit/Metrics.h"
#include "ui/kit/ScrollArea.h"
#include "ui/kit/TextLabel.h"
#include "ui/state/PresetCardContent.h"
#include "ui/state/ScreenLayout.h"

#include <QApplication>
#include <QVBoxLayout>

#include <algorithm>
#include <utility>

namespace ventolith::ui {

using app::AppModelField;

namespace {

constexpr int reach = Surface::shadowReach;

} // namespace

PresetsView::PresetsView(const ViewContext& context, QWidget* parent)
    : ModelView(context,
                {AppModelField::presets, AppModelField::activePresetID, AppModelField::isHelperActive},
                parent),
      gridArea_(new QWidget),
      columns_(new AdaptiveGrid(metrics::presetMinimum, metrics::presetGap, gridArea_)),
      newPresetCard_(new NewPresetCard(context, gridArea_)),
      autoSwitch_(new AutoSwitchSection(context)) {
  setMinimumWidth(detailMinimumWidth);
  layOut();
  arrange();
  refresh({});
}

void PresetsView::layOut() {
  columns_->setOutset(reach);
  columns_->setContentsMargins(reach, reach, reach, reach);
  auto* introduction = new TextLabel(theme(), TextRole::body, &Palette::secondaryText);
  introduction->setFit(Fit::wrapped);
  introduction->setText(presetsTexts().introduction);

  auto* content = new QWidget;
  auto* column = new QVBoxLayout(content);
  // The grid's area holds the shadows of its cards, too.
  constexpr int sides = metrics::screenSides - reach, spacing = metrics::presetGap - reach;
  column->setContentsMargins(sides, metrics::screenTop, sides, metrics::screenBottom);
  column->setSpacing(0);
  const auto addInset = [&](QWidget* piece) {
    auto* row = new QHBoxLayout;
    row->setContentsMargins(reach, 0, reach, 0);
    row->addWidget(piece);
    column->addLayout(row);
  };
  addInset(introduction);
  column->addSpacing(spacing);
  column->addWidget(gridArea_);
  column->addSpacing(spacing);
  addInset(autoSwitch_);
  column->addStretch();

  auto* scroll = new ScrollArea(theme());
  scroll->setContent(content);
  auto* all = new QVBoxLayout(this);
  all->setContentsMargins(0, 0, 0, 0);
  all->addWidget(scroll);
}

void PresetsView::refresh(Fields) {
  const std::vector<PresetCard*> before = cards_;
  takePresets();
  if (cards_ == before) return;
  std::vector<PresetCard*> gone;
  std::copy_if(before.begin(), before.end(), std::back_inserter(gone), [this](PresetCard* card) {
    return std::find(cards_.begin(), cards_.end(), card) == cards_.end();
  });
  arrange();
  remove(gone);
}

void PresetsView::takePresets() {
  std::vector<PresetCard*> known = std::exchange(cards_, {});
  for (const core::FanPreset& preset : model().presets()) {
    const auto isIts = [&](const PresetCard* card) { return card->preset().id == preset.id; };
    const auto found = std::find_if(known.begin(), known.end(), isIts);
    if (found != known.end()) {
      (*found)->refresh(preset);
      cards_.push_back(*found);
      known.erase(found); // Two presets of one identifier have a card each.
      continue;
    }
    cards_.push_back(new PresetCard(context(), preset, gridArea_));
  }
}

/// The cards in their order, for the eye and for the keyboard.
void PresetsView::arrange() {
  while (QLayoutItem* item = columns_->takeAt(0))
    delete item; // Qt hands it over raw.
  std::vector<QWidget*> stops;
  for (PresetCard* card : cards_) {
    columns_->addWidget(card);
    for (QWidget* stop : card->tabStops())
      stops.push_back(stop);
  }
  columns_->addWidget(newPresetCard_);
  stops.push_back(newPresetCard_);
  for (QWidget* stop : autoSwitch_->tabStops())
    stops.push_back(stop);
  // The last first: Qt takes a control for well placed that follows the last one around the corner.
  for (std::size_t place = stops.size(); place > 1; --place)
    setTabOrder(stops.front(), stops[place - 1]);
}

void PresetsView::remove(const std::vector<PresetCard*>& cards) {
  for (PresetCard* card : cards) {
    const bool hadFocus = card->isAncestorOf(QApplication::focusWidget());
    card->hide();
    card->deleteLater();
    if (!hadFocus) continue;
    QWidget& next = cards_.empty() ? static_cast<QWidget&>(*newPresetCard_) : cards_.back()->menu();
    next.setFocus(Qt::OtherFocusReason);
  }
}

} // namespace ventolith::ui
