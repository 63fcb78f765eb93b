// Scrolls a screen's content down, never sideways, under a bar that lies over it and takes no room.
//
// The bar appears while the content is scrolled or the pointer is over its edge, and goes after a moment.
// Nothing runs while it is away.
#pragma once

#include <QScrollArea>
#include <QTimer>

namespace ventolith::ui {

class Theme;

/// The thumb of the bar on a track of `track` pixels.
struct ThumbGeometry {
  int top;
  int length;

  /// `value` of 0 to `maximum`, with `page` visible at a time.
  [[nodiscard]] static ThumbGeometry of(int track, int value, int maximum, int page);
};

class OverlayBar;

class ScrollArea : public QScrollArea {
  Q_OBJECT

public:
  explicit ScrollArea(const Theme& theme, QWidget* parent = nullptr);

  /// As wide as the area at any time. Taken over.
  void setContent(QWidget* content);

protected:
  void resizeEvent(QResizeEvent* event) override;
  void scrollContentsBy(int dx, int dy) override;

private:
  OverlayBar* bar_;
};

/// The bar itself: shows where a scroll bar stands, and can be dragged.
class OverlayBar : public QWidget {
  Q_OBJECT

public:
  OverlayBar(const Theme& theme, QScrollBar& scroll, QWidget* parent);

  /// Shows the bar; it goes after a moment without another call, unless the pointer holds it.
  void flash();

  static constexpr int width = 12;

protected:
  void paintEvent(QPaintEvent*) override;
  void enterEvent(QEnterEvent*) override;
  void leaveEvent(QEvent*) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void wheelEvent(QWheelEvent* event) override;

private:
  [[nodiscard]] ThumbGeometry thumb() const;
  void dragTo(double pointer);

  const Theme& theme_;
  QScrollBar& scroll_;
  QTimer away_;
  bool shown_ = false;
  bool held_ = false;
  double grip_ = 0; // From the thumb's top to the pointer.
};

} // namespace ventolith::ui
