#include "ui/DashboardView.h"

#include "ui/HelperActions.h"
#include "ui/kit/ScrollArea.h"
#include "ui/state/DashboardContent.h"
#include "ui/state/Numbers.h"
#include "ui/state/ScreenLayout.h"

#include <QVBoxLayout>

#include <algorithm>

namespace ventolith::ui {

using enum app::AppModelField;

namespace {

constexpr ModelView::Fields ofBanner{isHelperActive, helperManager};
constexpr ModelView::Fields ofError{connectionError};
constexpr ModelView::Fields ofFans{snapshot,     activePlan,   presets,      activePresetID,
                                   fanSliderRPM, draggingFans, controlState, isHelperActive};
constexpr ModelView::Fields ofSensors{snapshot};

bool touches(ModelView::Fields changed, ModelView::Fields some) {
  return !(changed & some).isEmpty();
}

} // namespace

DashboardView::DashboardView(const ViewContext& context, QWidget* parent)
    : ModelView(context, ofBanner | ofError | ofFans | ofSensors, parent),
      column_(new QVBoxLayout),
      inactive_(new HelperBanner(context, HelperNotice::Kind::inactive)),
      stale_(new HelperBanner(context, HelperNotice::Kind::stale)),
      error_(new ErrorStrip(context.theme)),
      noFans_(new EmptyLine(context.theme, dashboardTexts().noFans)),
      noSensors_(new EmptyLine(context.theme, dashboardTexts().noSensors)) {
  auto* content = new QWidget;
  content->setMinimumWidth(detailMinimumWidth);
  content->setLayout(column_);
  column_->setContentsMargins(metrics::screenSides, metrics::screenTop, metrics::screenSides,
                              metrics::screenBottom);
  column_->setSpacing(metrics::betweenCards);
  for (QWidget* notice :
       {static_cast<QWidget*>(inactive_), static_cast<QWidget*>(stale_), static_cast<QWidget*>(error_)})
    column_->addWidget(notice);
  const DashboardTexts texts = dashboardTexts();
  fanGrid_ = addCard(Symbol::fan, texts.fans, noFans_, metrics::fanMinimum, metrics::fanGap);
  fanGrid_->setFillsWidth(true);
  sensorGrid_ =
      addCard(Symbol::thermometer, texts.sensors, noSensors_, metrics::sensorMinimum, metrics::sensorGap);
  column_->addStretch();

  auto* area = new ScrollArea(context.theme);
  area->setContent(content);
  auto* all = new QVBoxLayout(this);
  all->setContentsMargins(0, 0, 0, 0);
  all->addWidget(area);
  catchUp(); // What is made while it is shown would come a frame later.
}

/// Hiding says that the dashboard is gone, and ends a drag, while there is still a view to do so.
DashboardView::~DashboardView() {
  if (isVisible()) hide();
}

AdaptiveGrid* DashboardView::addCard(Symbol symbol, const QString& title, EmptyLine* empty, int minimum,
                                     int gap) {
  auto* card = new Card(theme());
  card->setTitle(symbol, title);
  card->content()->addWidget(empty);
  auto* grid = new AdaptiveGrid(minimum, gap);
  card->content()->addLayout(grid);
  column_->addWidget(card);
  return grid;
}

void DashboardView::showEvent(QShowEvent* event) {
  ModelView::showEvent(event);
  model().setDashboardVisible(true);
}

void DashboardView::hideEvent(QHideEvent* event) {
  model().setDashboardVisible(false);
  ModelView::hideEvent(event);
}

void DashboardView::refresh(Fields changed) {
  if (touches(changed, ofBanner)) refreshBanner();
  if (touches(changed, ofError)) refreshError();
  if (touches(changed, ofFans)) refreshFans();
  if (touches(changed, ofSensors)) refreshSensors();
}

void DashboardView::refreshBanner() {
  const auto notice = dashboardBanner(helperCondition(model()));
  for (HelperBanner* banner : {inactive_, stale_})
    banner->setNotice(notice);
}

void DashboardView::refreshError() {
  error_->setText(utf8Text(model().connectionError().value_or("")));
}

void DashboardView::refreshFans() {
  const std::vector<core::Fan>& fans = model().snapshot().fans;
  adjustTiles(fans);
  for (std::size_t place = 0; place < fans.size(); ++place)
    tiles_[place]->refresh(fans[place]);
  noFans_->setVisible(fans.empty());
}

/// Tiles stay with their fans: what is dragged in one, and where the keyboard is, must not pass to another.
void DashboardView::adjustTiles(const std::vector<core::Fan>& fans) {
  const auto areSame = [](const FanTileView* tile, const core::Fan& fan) { return tile->fanID() == fan.id; };
  if (std::equal(tiles_.begin(), tiles_.end(), fans.begin(), fans.end(), areSame)) return;
  for (FanTileView* tile : tiles_)
    delete tile;
  tiles_.clear();
  for (const core::Fan& fan : fans) {
    tiles_.push_back(new FanTileView(context(), fan));
    fanGrid_->addWidget(tiles_.back());
  }
}

void DashboardView::refreshSensors() {
  const std::vector<core::TempSensor>& sensors = model().snapshot().temps;
  for (; rows_.size() > sensors.size(); rows_.pop_back())
    delete rows_.back();
  while (rows_.size() < sensors.size()) {
    rows_.push_back(new SensorRow(theme()));
    sensorGrid_->addWidget(rows_.back());
  }
  for (std::size_t place = 0; place < sensors.size(); ++place)
    rows_[place]->setSensor(sensors[place]);
  noSensors_->setVisible(sensors.empty());
}

} // namespace ventolith::ui
