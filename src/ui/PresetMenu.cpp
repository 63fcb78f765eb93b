#include "ui/PresetMenu.h"

#include "core/Visitor.h"
#include "ui/kit/MenuButton.h"

#include <QHBoxLayout>

#include <utility>

namespace ventolith::ui {

using app::AppModelField;

PresetMenu::PresetMenu(const ViewContext& context, QWidget* parent)
    : ModelView(context,
                {AppModelField::presets, AppModelField::activePresetID, AppModelField::activePlan,
                 AppModelField::isHelperActive},
                parent),
      button_(new MenuButton(context.theme, MenuButtonKind::pullDown, this)) {
  auto* all = new QHBoxLayout(this);
  all->setContentsMargins(0, 0, 0, 0);
  all->addWidget(button_);
  setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);

  button_->setAccessibleDescription(tr("Presets"));
  button_->setRows([this] { return rows(); });
  refresh({});
}

void PresetMenu::refresh(Fields) {
  PresetMenuContent content = presetMenuContent({.presets = model().presets(),
                                                 .activePresetID = model().activePresetID(),
                                                 .activePlan = model().activePlan(),
                                                 .canControlFans = model().canControlFans()});
  if (content == content_) return;
  content_ = std::move(content);
  button_->setTitle(content_.title);
  button_->setSymbol(symbolNamed(content_.symbol));
  button_->refreshMenu();
}

std::vector<MenuRow> PresetMenu::rows() const {
  std::vector<MenuRow> rows;
  for (const auto& row : content_.quickRows)
    rows.push_back(menuRow(row));
  if (!content_.presetRows.empty()) rows.push_back(MenuRow::divider());
  for (const auto& row : content_.presetRows)
    rows.push_back(menuRow(row));
  return rows;
}

MenuRow PresetMenu::menuRow(const PresetMenuContent::Row& row) const {
  return {.title = row.title,
          .symbol = symbolNamed(row.symbol),
          .mark = row.isMarked ? MenuMark::prefixed : MenuMark::none,
          .isEnabled = row.isEnabled,
          .action = [this, action = row.action] { carryOut(action); }};
}

void PresetMenu::carryOut(const PresetMenuContent::Action& action) const {
  std::visit(
      core::Visitor{
          [this](const PresetMenuContent::ActivateAutomatic&) { model().activateAutomatic(); },
          [this](const PresetMenuContent::ActivateFullBlast&) { model().activateFullBlast(); },
          [this](const PresetMenuContent::ActivatePreset& chosen) { model().activatePreset(chosen.preset); },
      },
      action);
}

} // namespace ventolith::ui
