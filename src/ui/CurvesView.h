// The screen "Fan Curves": one fan's curve on a chart, the sensor that it follows, and how all fans respond.
#pragma once

#include "ui/ModelView.h"
#include "ui/state/CurveEditing.h"

#include <memory>

QT_BEGIN_NAMESPACE
class QVBoxLayout;
QT_END_NAMESPACE

namespace ventolith::ui {

class Button;
class Card;
class CurveChart;
class CurveControlsRow;
class CurveLiveLine;
class CurveTuningCard;
class Popover;
class SavePresetForm;

/// Each time that it comes into view is a visit of its own: nothing is chosen, and the curve is loaded from
/// the model. A gesture that lasts when it goes is ended, and what it made is kept.
class CurvesView final : public ModelView {
  Q_OBJECT

public:
  explicit CurvesView(const ViewContext& context, QWidget* parent = nullptr);
  ~CurvesView() override;

protected:
  void refresh(Fields changed) override;
  void showEvent(QShowEvent* event) override;
  void hideEvent(QHideEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;

private:
  class Model;

  void arrange();
  [[nodiscard]] QWidget* makeHeader() const;
  [[nodiscard]] Card* makeEmptyFansState() const;
  [[nodiscard]] QWidget* makeEditor();
  [[nodiscard]] Card* makeChartCard();
  [[nodiscard]] QWidget* makeActionsRow();
  void connectControls();
  void connectActions();
  void connectPopover();

  void beginVisit();
  void display();
  void displayCurve();
  void settleChartHeight();
  void openPopover();
  void deletePoint();
  void savePreset();

  std::unique_ptr<Model> curveModel_;
  std::unique_ptr<CurveEditing> editing_; // Of the present visit.

  Card* emptyFansState_;
  QWidget* editor_;
  CurveControlsRow* controlsRow_;
  CurveChart* chart_;
  CurveLiveLine* liveLine_;
  Button* addPoint_;
  Button* deletePoint_;
  Button* reset_;
  Button* savePreset_;
  CurveTuningCard* tuningCard_;
  Popover* savePresetPopover_;
  SavePresetForm* form_;
};

} // namespace ventolith::ui
