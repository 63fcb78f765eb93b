// One line of text that the user writes.
#pragma once

#include "ui/kit/ControlFeel.h"

#include <QLineEdit>

namespace ventolith::ui {

/// A line edit with the house's frame. `returnPressed` submits; Escape is left to whoever holds the field.
class TextField final : public QLineEdit {
  Q_OBJECT

public:
  static constexpr int fieldHeight = 28;

  explicit TextField(const Theme& theme, QWidget* parent = nullptr);

  [[nodiscard]] QSize sizeHint() const override;
  [[nodiscard]] QSize minimumSizeHint() const override;

protected:
  void paintEvent(QPaintEvent* event) override;

private:
  void takeColors();

  const Theme& theme_;
  ControlFeel feel_;
};

} // namespace ventolith::ui
