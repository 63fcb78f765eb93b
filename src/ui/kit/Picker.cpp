#include "ui/kit/Picker.h"

#include "ui/kit/Accessibility.h"

#include <algorithm>
#include <cmath>

namespace ventolith::ui {
namespace {

constexpr ButtonMetrics pickerMetrics{.height = 28,
                                      .leading = 11,
                                      .trailing = 7,
                                      .trailingIcon = 14,
                                      .trailingGap = 6,
                                      .radius = 7,
                                      .text = TextRole::body};

} // namespace

Picker::Picker(const Theme& theme, QWidget* parent) : MenuButton(theme, MenuButtonKind::pullDown, parent) {
  setMetrics(pickerMetrics);
  setTrailing({Symbol::chevronsUpDown, &Palette::secondaryText, true});
  setMaximumWidth(QWIDGETSIZE_MAX);
  setRows([this] { return makeRows(); });
}

void Picker::setPreferredWidth(int width) {
  preferredWidth_ = width;
  updateGeometry();
}

void Picker::setTitles(const QStringList& titles) {
  if (titles == titles_) return;
  titles_ = titles;
  updateGeometry();
  setCurrent(current_);
  refreshMenu(); // Its rows stand for positions.
}

void Picker::setCurrent(std::optional<int> position) {
  const bool isThere = position && *position >= 0 && *position < titles_.size();
  current_ = isThere ? position : std::nullopt;
  const QString title = isThere ? titles_[*position] : QString();
  if (title == this->title()) return;
  setTitle(title);
  announceValue(*this);
}

QSize Picker::sizeHint() const {
  double widest = 0;
  for (const QString& title : titles_)
    widest = std::max(widest, TextLine(title, pickerMetrics.text).width());
  const int around =
      pickerMetrics.leading + pickerMetrics.trailingGap + pickerMetrics.trailingIcon + pickerMetrics.trailing;
  const int natural = static_cast<int>(std::ceil(widest)) + around;
  return {std::min(std::max(natural, preferredWidth_), maximumWidth()), pickerMetrics.height};
}

std::vector<MenuRow> Picker::makeRows() {
  setMinimumMenuWidth(width());
  std::vector<MenuRow> rows;
  for (int position = 0; position < titles_.size(); ++position) {
    rows.push_back({.title = titles_[position],
                    .mark = position == current_ ? MenuMark::column : MenuMark::none,
                    .action = [this, position] { pick(position); }});
  }
  return rows;
}

void Picker::pick(int position) {
  if (position == current_ || position >= titles_.size()) return;
  setCurrent(position);
  Q_EMIT picked(position);
}

} // namespace ventolith::ui
