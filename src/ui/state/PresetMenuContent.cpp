#include "ui/state/PresetMenuContent.h"

#include "app/ControlActions.h"
#include "ui/state/Numbers.h"

#include <QCoreApplication>

#include <algorithm>
#include <utility>

namespace ventolith::ui {

namespace {

class PresetMenu {
  Q_DECLARE_TR_FUNCTIONS(PresetMenu)
};

using Content = PresetMenuContent;
using Row = PresetMenuContent::Row;

const QString& presetSymbol() {
  static const QString symbol = QStringLiteral("slider.horizontal.3");
  return symbol;
}

const QString& automaticSymbol() {
  static const QString symbol = QStringLiteral("arrow.uturn.backward");
  return symbol;
}

Row row(const QString& title, const QString& symbol, Content::Action action) {
  return {.title = title, .symbol = symbol, .action = std::move(action)};
}

Row marked(Row row, bool isMarked) {
  row.isMarked = isMarked;
  return row;
}

Row enabled(Row row, bool isEnabled) {
  row.isEnabled = isEnabled;
  return row;
}

std::optional<core::FanPreset> activePreset(const PresetMenuState& state) {
  const auto isActive = [&](const core::FanPreset& preset) { return state.activePresetID == preset.id; };
  const auto found = std::find_if(state.presets.begin(), state.presets.end(), isActive);
  return found != state.presets.end() ? std::optional(*found) : std::nullopt;
}

QString closedSymbol(bool isPreset, bool isAutomatic) {
  if (isPreset) return presetSymbol();
  return isAutomatic ? automaticSymbol() : QStringLiteral("hand.point.up.left.fill");
}

} // namespace

QString runningNow(const std::optional<core::FanPreset>& activePreset,
                   const core::FanControlPlan& activePlan) {
  if (activePreset) return utf8Text(activePreset->name);
  return app::controlsAFan(activePlan) ? PresetMenu::tr("Custom") : PresetMenu::tr("Automatic");
}

PresetMenuContent presetMenuContent(const PresetMenuState& state) {
  const std::optional<core::FanPreset> active = activePreset(state);
  const bool isAutomatic = !active && !app::controlsAFan(state.activePlan);

  Content content{.title = runningNow(active, state.activePlan),
                  .symbol = closedSymbol(active.has_value(), isAutomatic)};
  content.quickRows = {
      marked(row(PresetMenu::tr("Automatic"), automaticSymbol(), Content::ActivateAutomatic{}), isAutomatic),
      enabled(row(PresetMenu::tr("Full Blast"), QStringLiteral("bolt.fill"), Content::ActivateFullBlast{}),
              state.canControlFans),
  };
  for (const core::FanPreset& preset : state.presets) {
    Row entry = row(utf8Text(preset.name), presetSymbol(), Content::ActivatePreset{preset});
    content.presetRows.push_back(
        enabled(marked(std::move(entry), state.activePresetID == preset.id), state.canControlFans));
  }
  return content;
}

} // namespace ventolith::ui
