// One preset: its name, its small picture, and what can be done with it.
#pragma once

#include "core/FanControlPlan.h"
#include "ui/ModelView.h"
#include "ui/kit/MenuPanel.h"
#include "ui/kit/Surface.h"
#include "ui/state/PresetCardContent.h"

#include <vector>

QT_BEGIN_NAMESPACE
class QHBoxLayout;
QT_END_NAMESPACE

namespace ventolith::ui {

class Badge;
class Button;
class CurveThumbnail;
class Dot;
class MenuButton;
class TextField;

/// Whoever holds it tells it of what the model says (`refresh`). The name that the user is writing stays as
/// it is meanwhile: Return gives it to the model, Escape lets the old one stand.
class PresetCard final : public Surface {
  Q_OBJECT

public:
  static constexpr int leastHeight = 150; // Of what lies on the ground, without the shadow.

  PresetCard(const ViewContext& context, const core::FanPreset& preset, QWidget* parent = nullptr);
  ~PresetCard() override;

  [[nodiscard]] const core::FanPreset& preset() const { return preset_; }
  void refresh(const core::FanPreset& preset);

  [[nodiscard]] bool isEditingName() const { return renaming_.isEditingName; }
  void beginRenaming();

  [[nodiscard]] TextLabel& name() { return *name_; }
  [[nodiscard]] TextField& nameField() { return *nameField_; }
  [[nodiscard]] MenuButton& menu() { return *menu_; }
  [[nodiscard]] CurveThumbnail& thumbnail() { return *thumbnail_; }
  [[nodiscard]] TextLabel& caption() { return *caption_; }
  [[nodiscard]] Badge& activeBadge() { return *activeBadge_; }
  [[nodiscard]] Button& activateButton() { return *activateButton_; }
  [[nodiscard]] std::vector<QWidget*> tabStops();

protected:
  void keyPressEvent(QKeyEvent* event) override;

private:
  void makePieces();
  void layOut();
  [[nodiscard]] QHBoxLayout* header();
  [[nodiscard]] QHBoxLayout* footer();
  void showContent();
  void showDot();
  void showName();
  void endRenaming();
  void submitName();
  [[nodiscard]] std::vector<MenuRow> menuRows();

  const ViewContext& context_;
  core::FanPreset preset_;
  PresetCardContent content_;
  PresetsTexts texts_;
  PresetRenaming renaming_;

  // Children.
  Dot* dot_;
  TextLabel* name_;
  TextField* nameField_;
  MenuButton* menu_;
  CurveThumbnail* thumbnail_;
  TextLabel* caption_;
  Badge* activeBadge_;
  Button* activateButton_;
};

} // namespace ventolith::ui
