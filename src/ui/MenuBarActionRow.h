// The last row of the menu bar's panel: the check for updates, support, and the end of the application.
#pragma once

#include "ui/ModelView.h"
#include "ui/UpdateCheckButton.h"

namespace ventolith::ui {

/// Its owner, who hears of the model's changes, refreshes it for the update button's fields.
class MenuBarActionRow final : public QWidget {
  Q_OBJECT

public:
  explicit MenuBarActionRow(const ViewContext& context, QWidget* parent = nullptr);

  void refresh() { update_->refresh(); }

Q_SIGNALS:
  /// Something outside the panel comes to the front.
  void left();

private:
  UpdateCheckButton* update_;
};

} // namespace ventolith::ui
