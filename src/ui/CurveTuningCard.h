// How quickly and how calmly all fans follow their curves and rules.
#pragma once

#include "ui/kit/Slider.h"
#include "ui/kit/Surface.h"

QT_BEGIN_NAMESPACE
class QBoxLayout;
QT_END_NAMESPACE

namespace ventolith::ui {

class CurveEditing;

class CurveTuningCard final : public Card {
  Q_OBJECT

public:
  explicit CurveTuningCard(const Theme& theme, QWidget* parent = nullptr);

  void display(const CurveEditing& editing);

Q_SIGNALS:
  void hysteresisMoved(double celsius);
  void responseMoved(double alpha); // 0 to 1.
  /// The user let go of one of the two.
  void committed();

protected:
  void resizeEvent(QResizeEvent* event) override;

private:
  /// A title and a value above a slider, and what stands below it.
  struct Part {
    QVBoxLayout* column;
    TextLabel* value;
    Slider* slider;
  };
  [[nodiscard]] Part makePart(const QString& title, const SliderRange& range) const;
  static void show(const Part& part, double value, const QString& text);

  Part hysteresis_;
  Part response_;
  QBoxLayout* parts_;
};

} // namespace ventolith::ui
