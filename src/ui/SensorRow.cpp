#include "ui/SensorRow.h"

#include "ui/KitValues.h"

#include <QHBoxLayout>

namespace ventolith::ui {

SensorRow::SensorRow(const Theme& theme, QWidget* parent)
    : Surface(theme, surfaces::sensorRow, parent),
      dot_(new Dot(9, Qt::transparent)),
      name_(new TextLabel(theme, TextRole::sensorName, &Palette::primaryText)),
      detail_(new TextLabel(theme, TextRole::caption, &Palette::tertiaryText)),
      reading_(new TextLabel(theme, TextRole::reading, &Palette::primaryText)) {
  constexpr int leading = 11, trailing = 12;
  setFixedHeight(height);
  auto* row = new QHBoxLayout(this);
  row->setContentsMargins(leading, 0, trailing, 0);
  row->setSpacing(metrics::space10);
  row->addWidget(dot_);

  auto* lines = new QVBoxLayout;
  lines->setSpacing(0);
  lines->addStretch();
  for (TextLabel* label : {name_, detail_}) {
    label->setFit(Fit::elided);
    lines->addWidget(label);
  }
  lines->addStretch();
  row->addLayout(lines, 1);
  reading_->setAlignment(Qt::AlignRight);
  row->addWidget(reading_);

  connect(&theme, &Theme::changed, this, &SensorRow::present);
}

void SensorRow::setSensor(const core::TempSensor& sensor) {
  sensor_ = sensor;
  present();
}

void SensorRow::present() {
  const SensorRowContent content = sensorRowContent(sensor_, schemeOf(theme()));
  if (content == shown_) return;
  if (!shown_ || content.name != shown_->name) setAccessibleName(content.name);
  shown_ = content;
  const QColor color = qColor(content.color);
  dot_->setColor(color);
  name_->setText(content.name);
  detail_->setText(content.detail);
  reading_->setText(content.reading);
  reading_->setColor(color);
}

} // namespace ventolith::ui
