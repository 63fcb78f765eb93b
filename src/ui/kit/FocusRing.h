// The ring around the control that the keyboard speaks to.
#pragma once

#include <QFocusFrame>
#include <QPointer>
#include <QRectF>

#include <vector>

namespace ventolith::ui {

class Theme;

/// What the ring goes around, in the control's own coordinates.
struct RingShape {
  QRectF around;
  double radius = 0;
};

/// Lies over the control's surroundings, since it reaches beyond the control. It follows the control wherever
/// its ancestors take it, scrolls with it, and takes no input. A focus frame by type alone: assistive
/// technology passes those over.
class FocusRing final : public QFocusFrame {
public:
  /// Both outlive it. It is shown at once.
  FocusRing(const Theme& theme, QWidget& control, RingShape shape);
  ~FocusRing() override;

  void setShape(RingShape shape);

  /// Is gone at once, and deleted when the parent is done with whatever it does to its children now: a ring
  /// often ends because they are all being hidden.
  void retire();

protected:
  bool eventFilter(QObject* watched, QEvent* event) override;
  void paintEvent(QPaintEvent* event) override;

private:
  void attach();
  void detach();
  void place();

  const Theme& theme_;
  QWidget& control_;
  RingShape shape_;
  std::vector<QPointer<QWidget>> followed_; // The control and its ancestors below the ring's parent.
};

} // namespace ventolith::ui
