// The tray of presets: a button that says what runs now, and the menu of what else could.
#pragma once

#include "ui/ModelView.h"
#include "ui/kit/MenuPanel.h"
#include "ui/state/PresetMenuContent.h"

#include <vector>

namespace ventolith::ui {

class MenuButton;

/// For the toolbar and the menu bar's panel alike. Exactly as large as its button, which takes its focus.
class PresetMenu final : public ModelView {
  Q_OBJECT

public:
  explicit PresetMenu(const ViewContext& context, QWidget* parent = nullptr);

  [[nodiscard]] MenuButton& button() { return *button_; }

protected:
  void refresh(Fields changed) override;

private:
  [[nodiscard]] std::vector<MenuRow> rows() const;
  [[nodiscard]] MenuRow menuRow(const PresetMenuContent::Row& row) const;
  void carryOut(const PresetMenuContent::Action& action) const;

  MenuButton* button_; // A child.
  PresetMenuContent content_;
};

} // namespace ventolith::ui
