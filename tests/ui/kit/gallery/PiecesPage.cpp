#include "Gallery.h"

#include "ui/kit/AdaptiveGrid.h"
#include "ui/kit/Badge.h"
#include "ui/kit/Gauge.h"
#include "ui/kit/IconView.h"
#include "ui/kit/Notices.h"
#include "ui/kit/ScrollArea.h"
#include "ui/kit/TextLabel.h"

#include <QVBoxLayout>

#include <array>

namespace ventolith::ui::gallery {
namespace {

TextLabel* label(const Theme& theme, TextRole role, ColorRole color, const QString& text,
                 Fit fit = Fit::whole) {
  auto* made = new TextLabel(theme, role, color);
  made->setFit(fit);
  made->setText(text);
  return made;
}

struct Fan {
  const char* name;
  int rpm;
  const char* range;
  double fraction;
  Symbol mode;
  const char* modeName;
  const char* status;
};

Surface* fanTile(const Theme& theme, const Fan& fan) {
  auto* tile = new Surface(theme, surfaces::tile);
  auto* column = new QVBoxLayout(tile);
  column->setContentsMargins(metrics::tilePadding, metrics::tilePadding, metrics::tilePadding,
                             metrics::tilePadding);
  column->setSpacing(metrics::space12);

  auto* header = new QHBoxLayout;
  header->setSpacing(7);
  header->addWidget(new IconView(theme, Symbol::fan, 16, &Palette::secondaryText));
  header->addWidget(label(theme, TextRole::bodyStrong, &Palette::primaryText, QString::fromUtf8(fan.name)));
  header->addStretch();
  auto* badge = new Badge(theme);
  badge->setContent(fan.mode, QString::fromUtf8(fan.modeName),
                    fan.mode == Symbol::uturn ? BadgeStyle::quiet : BadgeStyle::strong);
  header->addWidget(badge);
  column->addLayout(header);

  auto* middle = new QHBoxLayout;
  middle->setSpacing(metrics::space12);
  auto* gauge = new Gauge(theme, Symbol::fan);
  gauge->setFraction(fan.fraction);
  middle->addWidget(gauge);
  auto* figures = new QVBoxLayout;
  figures->setSpacing(metrics::space2);
  auto* rpm = new QHBoxLayout;
  rpm->setSpacing(3);
  rpm->addWidget(label(theme, TextRole::rpm, &Palette::primaryText, QString::number(fan.rpm)));
  rpm->addWidget(label(theme, TextRole::rpmUnit, &Palette::secondaryText, QStringLiteral("rpm")), 0,
                 Qt::AlignBottom);
  rpm->addStretch();
  figures->addLayout(rpm);
  figures->addWidget(label(theme, TextRole::caption, &Palette::tertiaryText, QString::fromUtf8(fan.range)));
  middle->addLayout(figures, 1);
  column->addLayout(middle);
  column->addWidget(
      label(theme, TextRole::secondary, &Palette::secondaryText, QString::fromUtf8(fan.status), Fit::elided));
  return tile;
}

struct Sensor {
  const char* name;
  const char* detail;
  const char* reading;
  QRgb color;
};

constexpr std::array sensors{
    Sensor{"CPU", "CPU · Heavy", "77.3°C", 0xFF9738},
    Sensor{"CPU (cluster)", "CPU · Heavy", "81.6°C", 0xFF8B34},
    Sensor{"A sensor with a very long name that must end early", "CPU · Working", "73.8°C", 0xFFA23B},
    Sensor{"GPU", "GPU · Working", "64.9°C", 0xE2B643},
    Sensor{"Battery", "Battery · Idle", "34.8°C", 0x3E9BFF}};

Surface* sensorRow(const Theme& theme, const Sensor& sensor) {
  auto* surface = new Surface(theme, surfaces::sensorRow);
  surface->setFixedHeight(46);
  auto* row = new QHBoxLayout(surface);
  row->setContentsMargins(11, 0, 12, 0);
  row->setSpacing(metrics::space10);
  row->addWidget(new Dot(9, QColor::fromRgb(sensor.color)));
  auto* texts = new QVBoxLayout;
  texts->setSpacing(0);
  texts->addStretch();
  texts->addWidget(
      label(theme, TextRole::sensorName, &Palette::primaryText, QString::fromUtf8(sensor.name), Fit::elided));
  texts->addWidget(
      label(theme, TextRole::caption, &Palette::tertiaryText, QString::fromUtf8(sensor.detail), Fit::elided));
  texts->addStretch();
  row->addLayout(texts, 1);
  auto* reading = label(theme, TextRole::reading, &Palette::primaryText, QString::fromUtf8(sensor.reading));
  reading->setColor(QColor::fromRgb(sensor.color));
  row->addWidget(reading);
  return surface;
}

Card* fansCard(const Theme& theme) {
  auto* card = new Card(theme);
  card->setTitle(Symbol::fan, QStringLiteral("Fans"));
  auto* grid = new AdaptiveGrid(metrics::fanMinimum, metrics::fanGap);
  grid->setFillsWidth(true);
  grid->addWidget(fanTile(theme, {"Fan 0", 2310, "1250–6336 rpm range", 0.21, Symbol::uturn, "Auto",
                                  "Automatic — firmware controlled"}));
  grid->addWidget(fanTile(
      theme, {"Fan 1", 5921, "1350–6864 rpm range", 0.83, Symbol::chart, "Curve", "Curve · Balanced"}));
  card->content()->addLayout(grid);
  return card;
}

Card* sensorsCard(const Theme& theme) {
  auto* card = new Card(theme);
  card->setTitle(Symbol::thermometer, QStringLiteral("Sensors"));
  auto* grid = new AdaptiveGrid(metrics::sensorMinimum, metrics::sensorGap);
  for (const Sensor& sensor : sensors)
    grid->addWidget(sensorRow(theme, sensor));
  card->content()->addLayout(grid);
  return card;
}

AdaptiveGrid* presetGrid(const Theme& theme) {
  auto* grid = new AdaptiveGrid(metrics::presetMinimum, metrics::presetGap);
  grid->setOutset(Surface::shadowReach);
  for (const SurfaceStyle& style : {surfaces::presetCard, surfaces::activePresetCard}) {
    auto* card = new Surface(theme, style);
    card->setMinimumHeight(100 + 2 * Surface::shadowReach);
    auto* row = new QHBoxLayout(card);
    row->setContentsMargins(23, 23, 23, 23);
    row->addWidget(new Dot(10, QColor::fromRgb(0x34C759)), 0, Qt::AlignTop);
    row->addWidget(label(theme, TextRole::presetName, &Palette::primaryText, QStringLiteral("Balanced")), 0,
                   Qt::AlignTop);
    row->addStretch();
    auto* badge = new Badge(theme);
    badge->setContent(Symbol::checkmarkCircle, QStringLiteral("Active"), BadgeStyle::active);
    row->addWidget(badge, 0, Qt::AlignBottom);
    grid->addWidget(card);
  }
  auto* holder = new QWidget;
  auto* inner = new QVBoxLayout(holder);
  inner->setContentsMargins(8, 8, 8, 8);
  inner->addWidget(new Surface(theme, surfaces::dashedCard));
  grid->addWidget(holder);
  return grid;
}

QVBoxLayout* screen(QWidget& ground) {
  auto* column = new QVBoxLayout(&ground);
  column->setContentsMargins(detailContentInsets());
  column->setSpacing(metrics::betweenCards);
  return column;
}

std::unique_ptr<QWidget> makePieces(const Theme& theme) {
  auto ground = makeGround(theme);
  auto* column = screen(*ground);
  auto* inactive = new Banner(theme, Banner::Kind::neutral, Symbol::boltSlash);
  inactive->setText(QStringLiteral("Fan control isn't active yet"),
                    QStringLiteral("Sensor readings above are live. Set up the privileged helper to enable "
                                   "manual and Full Blast control."));
  column->addWidget(inactive);
  auto* stale = new Banner(theme, Banner::Kind::warning, Symbol::refreshAlert);
  stale->setText(
      QStringLiteral(
          "Ventolith's background helper isn't answering a version check — it may still be running older "
          "code from before this update, or it hit a problem starting up. Restart it to make sure fan "
          "control is current."),
      QStringLiteral("This can happen right after an update. Restarting the helper below usually fixes it in "
                     "a few seconds."));
  column->addWidget(stale);
  auto* error = new ErrorStrip(theme);
  column->addWidget(error);
  error->setText(QStringLiteral("The helper refused: the fan is held by another program."));
  column->addLayout(presetGrid(theme));
  auto* empty = new Card(theme);
  empty->setTitle(Symbol::fan, QStringLiteral("Fans"));
  empty->content()->addWidget(new EmptyLine(theme, QStringLiteral("No fans detected")));
  column->addWidget(empty);
  auto* nothing = new EmptyState(theme, Symbol::boltClock);
  nothing->setText(
      QStringLiteral("No rules yet"),
      QStringLiteral("Rules catch spikes your curve doesn't cover — like a hot SSD during a big copy."));
  column->addWidget(nothing, 1);
  return ground;
}

std::unique_ptr<QWidget> makeFans(const Theme& theme) {
  auto outer = makeGround(theme);
  auto* all = new QVBoxLayout(outer.get());
  all->setContentsMargins(0, 0, 0, 0);
  auto* area = new ScrollArea(theme);
  auto* content = new QWidget;
  auto* column = screen(*content);
  column->addWidget(fansCard(theme));
  column->addWidget(sensorsCard(theme));
  column->addStretch();
  area->setContent(content);
  all->addWidget(area);
  return outer;
}

} // namespace

Page piecesPage() {
  return {QStringLiteral("pieces"), QSize(800, 900), makePieces};
}

Page fansPage() {
  return {QStringLiteral("fans"), QSize(800, 560), makeFans};
}

} // namespace ventolith::ui::gallery
