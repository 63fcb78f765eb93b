// The last card of the presets: makes one of whatever the fans do now.
#pragma once

#include "ui/ModelView.h"
#include "ui/kit/ControlFeel.h"

#include <QPushButton>

namespace ventolith::ui {

/// One button as large as a card, with room on each side for the shadows that the cards beside it cast.
class NewPresetCard final : public QPushButton {
  Q_OBJECT

public:
  explicit NewPresetCard(const ViewContext& context, QWidget* parent = nullptr);

  [[nodiscard]] bool hasHeightForWidth() const override { return true; }
  [[nodiscard]] int heightForWidth(int width) const override;
  [[nodiscard]] QSize sizeHint() const override;
  [[nodiscard]] QSize minimumSizeHint() const override { return sizeHint(); }

protected:
  [[nodiscard]] bool hitButton(const QPoint& position) const override;
  void paintEvent(QPaintEvent* event) override;

private:
  [[nodiscard]] QRectF ground() const;
  [[nodiscard]] QStringList captionLines(double cardWidth) const;

  const Theme& theme_;
  QString title_;
  QString caption_;
  ControlFeel feel_;
};

} // namespace ventolith::ui
