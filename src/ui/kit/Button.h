// Buttons: a symbol, a title, or both.
#pragma once

#include "ui/kit/ControlFeel.h"
#include "ui/kit/Palette.h"
#include "ui/kit/Symbol.h"
#include "ui/kit/Type.h"

#include <QPushButton>

#include <optional>

namespace ventolith::ui {

enum class ButtonKind {
  bordered,
  prominent, ///< The one action that a screen or a popover is about.
  borderless ///< In `accent`; with a symbol alone in `secondaryText`, 24 a side.
};
enum class ButtonRole { normal, destructive };
enum class ButtonSize { normal, small };

/// Lengths of one sort of button, in logical pixels.
struct ButtonMetrics {
  int height = 28;
  int leading = 12; ///< From the edge to the content, the stroke included.
  int trailing = 12;
  int icon = 15;
  int gap = 6; ///< Between symbol and title.
  int trailingIcon = 0;
  int trailingGap = 0;
  double radius = 7;
  TextRole text = TextRole::button;

  [[nodiscard]] static ButtonMetrics of(ButtonKind kind, ButtonSize size);
};

class Button : public QPushButton {
  Q_OBJECT

public:
  /// How far a borderless button's ground reaches beyond its title on either side: whoever wants the title on
  /// a margin moves the button out by this.
  static constexpr int plainPadding = 4;
  /// The side of a button that is a symbol alone.
  static constexpr int symbolButtonSide = 24;

  Button(const Theme& theme, ButtonKind kind, ButtonSize size, QWidget* parent = nullptr);

  /// The title, which is also the spoken name unless another is given (`setAccessibleName`). A title that is
  /// too long for the widest that the button may be ends in "…". Ampersands are ordinary characters.
  void setTitle(const QString& title);
  [[nodiscard]] const QString& title() const { return title_; }
  /// Without a title the button is that symbol alone, and then it needs a spoken name.
  void setSymbol(std::optional<Symbol> symbol);
  [[nodiscard]] std::optional<Symbol> symbol() const { return symbol_; }
  void setRole(ButtonRole role);
  /// The side of the symbol, where it is not the usual one.
  void setSymbolSize(int pixels);
  /// Where the glyph of a symbol alone stands in its 24 pixels: at an edge that it is to be flush with.
  void setSymbolAlignment(Qt::Alignment horizontal);

  [[nodiscard]] QSize sizeHint() const override;
  [[nodiscard]] QSize minimumSizeHint() const override { return sizeHint(); }

protected:
  /// For the buttons that are made from this one.
  [[nodiscard]] const Theme& theme() const { return theme_; }
  void setMetrics(const ButtonMetrics& metrics);
  [[nodiscard]] const ButtonMetrics& metrics() const { return metrics_; }
  /// A symbol after the title, in `color`; `isApart` puts it at the far end and the title at the near one.
  struct Trailing {
    Symbol symbol;
    ColorRole color;
    bool isApart;
  };
  void setTrailing(Trailing trailing);
  /// Shows that a menu is open: bordered buttons take another fill.
  void setOpen(bool isOpen);

  [[nodiscard]] bool hitButton(const QPoint& position) const override;
  void paintEvent(QPaintEvent* event) override;
  bool event(QEvent* event) override;

private:
  [[nodiscard]] bool isSymbolAlone() const { return title_.isEmpty() && symbol_.has_value(); }
  [[nodiscard]] int symbolSide() const;
  [[nodiscard]] double symbolWidth() const;
  [[nodiscard]] double trailingWidth() const;
  [[nodiscard]] QColor titleColor() const;
  [[nodiscard]] QColor symbolColor() const;
  [[nodiscard]] double radius() const;
  void paintAll(QPainter& painter) const;
  void paintGround(QPainter& painter) const;
  void paintSymbolAlone(QPainter& painter) const;
  void paintContent(QPainter& painter) const;
  void settleSize();

  const Theme& theme_;
  ButtonKind kind_;
  ButtonMetrics metrics_;
  ButtonRole role_ = ButtonRole::normal;
  QString title_;
  std::optional<Symbol> symbol_;
  std::optional<int> symbolSize_;
  std::optional<Trailing> trailing_;
  Qt::Alignment symbolAlignment_ = Qt::AlignHCenter;
  bool isOpen_ = false;
  ControlFeel feel_;
};

} // namespace ventolith::ui
