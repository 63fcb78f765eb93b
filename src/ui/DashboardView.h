// The first screen: what the machine does now, every fan with its direct controls, every temperature.
#pragma once

#include "ui/FanTileView.h"
#include "ui/HelperBanner.h"
#include "ui/ModelView.h"
#include "ui/SensorRow.h"
#include "ui/kit/AdaptiveGrid.h"
#include "ui/kit/Notices.h"

#include <vector>

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
  [[nodiscard]] Card* fansSection() const;
  [[nodiscard]] Card* sensorsSection() const;
  [[nodiscard]] Card* sectionCard(Symbol symbol, const QString& title, EmptyLine* empty,
                                  AdaptiveGrid* columns) const;
  void refreshBanners();
  void refreshError();
  void refreshFans();
  void refreshSensors();
  void adjustTiles(const std::vector<core::Fan>& fans);

  HelperBanner* helperInactiveBanner_;
  HelperBanner* staleHelperBanner_;
  ErrorStrip* error_;
  EmptyLine* noFans_;
  EmptyLine* noSensors_;
  AdaptiveGrid* fanColumns_;
  AdaptiveGrid* sensorColumns_;
  std::vector<FanTileView*> tiles_;
  std::vector<SensorRow*> rows_;
};

} // namespace ventolith::ui
