// The bar above every screen: its title, and what is at hand on all of them.
#pragma once

#include "ui/ModelView.h"
#include "ui/kit/TextLabel.h"

namespace ventolith::ui {

/// The tray of presets, and the way back to the firmware, which is never blocked.
class TopBar final : public QWidget {
  Q_OBJECT

public:
  explicit TopBar(const ViewContext& context, QWidget* parent = nullptr);

  void setTitle(const QString& title) { title_->setText(title); }

protected:
  void paintEvent(QPaintEvent* event) override;

private:
  const Theme& theme_;
  TextLabel* title_;
};

} // namespace ventolith::ui
