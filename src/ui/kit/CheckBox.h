// A box with a check mark, and its title.
#pragma once

#include "ui/kit/ControlFeel.h"

#include <QCheckBox>

namespace ventolith::ui {

class CheckBox final : public QCheckBox {
  Q_OBJECT

public:
  static constexpr int side = 16;
  static constexpr int gap = 7;
  static constexpr int lineHeight = 18;

  explicit CheckBox(const Theme& theme, QWidget* parent = nullptr);

  /// Shown beside the box, and spoken as its name. Ampersands are ordinary characters.
  void setTitle(const QString& title);

  [[nodiscard]] QSize sizeHint() const override;
  [[nodiscard]] QSize minimumSizeHint() const override { return sizeHint(); }

protected:
  [[nodiscard]] bool hitButton(const QPoint& position) const override;
  void paintEvent(QPaintEvent* event) override;

private:
  [[nodiscard]] QRectF box() const;
  void paintAll(QPainter& painter) const;

  const Theme& theme_;
  QString title_;
  ControlFeel feel_;
};

} // namespace ventolith::ui
