// The panel that drops from the menu bar: the machine's state at a glance, and each fan in reach.
#pragma once

#include "ui/ModelView.h"

#include <vector>

QT_BEGIN_NAMESPACE
class QVBoxLayout;
QT_END_NAMESPACE

namespace ventolith::ui {

class Button;
class FanControlBlock;
class MenuBarActionRow;
class MenuBarHeader;
class MenuBarHelperRow;
class PresetMenu;
class SensorChipsRow;
class TextLabel;

/// The fixed width of a panel, and as high as what it shows. Where it may not be as high, its fans scroll.
class MenuBarView final : public ModelView {
  Q_OBJECT

public:
  explicit MenuBarView(const ViewContext& context, QWidget* parent = nullptr);

  [[nodiscard]] QSize sizeHint() const override;

Q_SIGNALS:
  /// Something outside the panel comes to the front: its work is done.
  void left();

protected:
  void refresh(Fields changed) override;

private:
  [[nodiscard]] QWidget* makeFansSection();
  [[nodiscard]] QWidget* makePresetRow();
  [[nodiscard]] QWidget* makeFooter();
  void refreshHeader();
  void refreshChips();
  void refreshFans();
  void refreshHelper();
  void adjustBlocks(const std::vector<core::Fan>& fans);
  [[nodiscard]] FanControlBlock* takeBlock(std::vector<FanControlBlock*>& known, const core::Fan& fan) const;
  void orderForKeyboard();

  MenuBarHeader* header_;
  SensorChipsRow* chips_;
  QWidget* chipsSection_; // With the divider under it.
  QVBoxLayout* fans_;
  TextLabel* noFans_;
  std::vector<FanControlBlock*> blocks_; // Children, in the snapshot's order.
  MenuBarHelperRow* inactive_;
  MenuBarHelperRow* stale_;
  PresetMenu* preset_;
  Button* restoreAuto_;
  Button* open_;
  MenuBarActionRow* actions_;
};

} // namespace ventolith::ui
