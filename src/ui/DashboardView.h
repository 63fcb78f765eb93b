// The first screen: what the machine does now, every fan with its direct controls, every temperature.
#pragma once

#include "ui/FanTileView.h"
#include "ui/HelperBanner.h"
#include "ui/ModelView.h"
#include "ui/SensorRow.h"
#include "ui/kit/AdaptiveGrid.h"
#include "ui/kit/Notices.h"

#include <vector>

QT_BEGIN_NAMESPACE
class QVBoxLayout;
QT_END_NAMESPACE

namespace ventolith::ui {

/// Tells the model whether it is on screen: the model reads the machine more often then.
class DashboardView final : public ModelView {
  Q_OBJECT

public:
  explicit DashboardView(const ViewContext& context, QWidget* parent = nullptr);
  ~DashboardView() override;

protected:
  void refresh(Fields changed) override;
  void showEvent(QShowEvent* event) override;
  void hideEvent(QHideEvent* event) override;

private:
  [[nodiscard]] AdaptiveGrid* addCard(Symbol symbol, const QString& title, EmptyLine* empty, int minimum,
                                      int gap);
  void refreshBanner();
  void refreshError();
  void refreshFans();
  void refreshSensors();
  void adjustTiles(const std::vector<core::Fan>& fans);

  QVBoxLayout* column_;
  HelperBanner* inactive_;
  HelperBanner* stale_;
  ErrorStrip* error_;
  EmptyLine* noFans_;
  EmptyLine* noSensors_;
  AdaptiveGrid* fanGrid_;
  AdaptiveGrid* sensorGrid_;
  std::vector<FanTileView*> tiles_;
  std::vector<SensorRow*> rows_;
};

} // namespace ventolith::ui
