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

constexpr ModelView::Fields ofBanners{isHelperActive, helperManager};
constexpr ModelView::Fields ofError{connectionError};
constexpr ModelView::Fields ofFans{snapshot,     activePlan,   presets,      activePresetID,
                                   fanSliderRPM, draggingFans, controlState, isHelperActive};
constexpr ModelView::Fields ofSensors{snapshot};

bool touches(ModelView::Fields changed, ModelView::Fields some) {
  return !(changed & some).isEmpty();
}

} // namespace

DashboardView::DashboardView(const ViewContext& context, QWidget* parent)
    : ModelView(context, ofBanners | ofError | ofFans | ofSensors, parent),
      helperInactiveBanner_(new HelperBanner(context, HelperNotice::Kind::inactive)),
      staleHelperBanner_(new HelperBanner(context, HelperNotice::Kind::stale)),
      error_(new ErrorStrip(context.theme)),
      noFans_(new EmptyLine(context.theme, dashboardTexts().noFans)),
      noSensors_(new EmptyLine(context.theme, dashboardTexts().noSensors)),
      fanColumns_(new AdaptiveGrid(metrics::fanMinimum, metrics::fanGap)),
      sensorColumns_(new AdaptiveGrid(metrics::sensorMinimum, metrics::sensorGap)) {
  auto* content = new QWidget;
  content->setMinimumWidth(detailMinimumWidth);
  auto* column = new QVBoxLayout(content);
  column->setContentsMargins(detailContentInsets());
  column->setSpacing(metrics::betweenCards);
  for (QWidget* part : std::initializer_list<QWidget*>{helperInactiveBanner_, staleHelperBanner_, error_,
                                                       fansSection(), sensorsSection()})
    column->addWidget(part);
  column->addStretch();

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

Card* DashboardView::fansSection() const {
  fanColumns_->setFillsWidth(true);
  return sectionCard(Symbol::fan, dashboardTexts().fans, noFans_, fanColumns_);
}

Card* DashboardView::sensorsSection() const {
  return sectionCard(Symbol::thermometer, dashboardTexts().sensors, noSensors_, sensorColumns_);
}

Card* DashboardView::sectionCard(Symbol symbol, const QString& title, EmptyLine* empty,
                                 AdaptiveGrid* columns) const {
  auto* card = new Card(theme());
  card->setTitle(symbol, title);
  card->content()->addWidget(empty);
  card->content()->addLayout(columns);
  return card;
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
  if (touches(changed, ofBanners)) refreshBanners();
  if (touches(changed, ofError)) refreshError();
  if (touches(changed, ofFans)) refreshFans();
  if (touches(changed, ofSensors)) refreshSensors();
}

void DashboardView::refreshBanners() {
  const auto notice = dashboardBanner(helperCondition(model()));
  for (HelperBanner* banner : {helperInactiveBanner_, staleHelperBanner_})
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
/// Those before the first change stay as they are, so that a fan that comes or goes ends no drag of theirs.
void DashboardView::adjustTiles(const std::vector<core::Fan>& fans) {
  const auto areSame = [](const FanTileView* tile, const core::Fan& fan) { return tile->fanID() == fan.id; };
  const auto [tile, fan] = std::mismatch(tiles_.begin(), tiles_.end(), fans.begin(), fans.end(), areSame);
  std::for_each(tile, tiles_.end(), [](const FanTileView* gone) { delete gone; });
  tiles_.erase(tile, tiles_.end());
  std::for_each(fan, fans.end(), [this](const core::Fan& come) {
    tiles_.push_back(new FanTileView(context(), come));
    fanColumns_->addWidget(tiles_.back());
  });
}

void DashboardView::refreshSensors() {
  const std::vector<core::TempSensor>& sensors = model().snapshot().temps;
  for (; rows_.size() > sensors.size(); rows_.pop_back())
    delete rows_.back();
  while (rows_.size() < sensors.size()) {
    rows_.push_back(new SensorRow(theme()));
    sensorColumns_->addWidget(rows_.back());
  }
  for (std::size_t place = 0; place < sensors.size(); ++place)
    rows_[place]->setSensor(sensors[place]);
  noSensors_->setVisible(sensors.empty());
}

} // namespace ventolith::ui
