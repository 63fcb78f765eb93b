// The measures and the look of a menu's rows, in the form in which QMenu asks for them.
#pragma once

#include <QCommonStyle>

namespace ventolith::ui {

class MenuPanel;
class Theme;

/// For one MenuPanel, which owns it. It leans on no other style: a menu looks the same wherever it opens.
class MenuStyle final : public QCommonStyle {
public:
  MenuStyle(const Theme& theme, const MenuPanel& menu) : theme_(theme), menu_(menu) {}

  /// What the window is larger than the panel on each side: nothing without a shadow, where the window is cut
  /// to the panel's shape.
  [[nodiscard]] int shadowReach() const;
  void setShadow(bool casts) { castsShadow_ = casts; }
  void setMinimumRowWidth(int width) { minimumRowWidth_ = width; }

  int pixelMetric(PixelMetric metric, const QStyleOption* option, const QWidget* widget) const override;
  int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                QStyleHintReturn* returned) const override;
  QSize sizeFromContents(ContentsType type, const QStyleOption* option, const QSize& size,
                         const QWidget* widget) const override;
  void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                     const QWidget* widget) const override;
  void drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                   const QWidget* widget) const override;

private:
  void drawRow(const QStyleOption& option, QPainter& painter) const;
  void drawScroller(const QStyleOption& option, QPainter& painter) const;

  const Theme& theme_;
  const MenuPanel& menu_;
  int minimumRowWidth_ = 0;
  bool castsShadow_ = true;
};

} // namespace ventolith::ui
