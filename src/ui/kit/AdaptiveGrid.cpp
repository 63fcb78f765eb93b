#include "ui/kit/AdaptiveGrid.h"

#include <QWidget>

#include <algorithm>
#include <memory>

namespace ventolith::ui {
namespace {

// Qt's own item brings a widget back to where no coordinate is negative.
void place(QLayoutItem& item, const QRect& rect) {
  QWidget* widget = item.widget();
  if (widget != nullptr && (rect.left() < 0 || rect.top() < 0))
    widget->setGeometry(rect);
  else
    item.setGeometry(rect);
}

} // namespace

AdaptiveGrid::AdaptiveGrid(int minimum, int gap, QWidget* parent)
    : QLayout(parent), minimum_(minimum), gap_(gap) {
  setContentsMargins(0, 0, 0, 0);
}

AdaptiveGrid::~AdaptiveGrid() {
  for (QLayoutItem* item : items_)
    std::unique_ptr<QLayoutItem>{item}.reset();
}

int AdaptiveGrid::columnsFor(int width, int minimum, int gap) {
  return std::max(1, (width + gap) / (minimum + gap));
}

void AdaptiveGrid::setFillsWidth(bool fills) {
  fillsWidth_ = fills;
  invalidate();
}

void AdaptiveGrid::setOutset(int outset) {
  outset_ = outset;
  invalidate();
}

int AdaptiveGrid::columns() const {
  return columnsAt(contentsRect().width(), static_cast<int>(shownItems().size()));
}

int AdaptiveGrid::columnsAt(int width, int items) const {
  const int room = columnsFor(width, minimum_, gap_);
  return fillsWidth_ ? std::clamp(room, 1, std::max(items, 1)) : room;
}

void AdaptiveGrid::addItem(QLayoutItem* item) {
  items_.push_back(item);
  invalidate();
}

int AdaptiveGrid::count() const {
  return static_cast<int>(items_.size());
}

QLayoutItem* AdaptiveGrid::itemAt(int index) const {
  return index < 0 || index >= count() ? nullptr : items_[static_cast<std::size_t>(index)];
}

QLayoutItem* AdaptiveGrid::takeAt(int index) {
  QLayoutItem* item = itemAt(index);
  if (item == nullptr) return nullptr;
  items_.erase(items_.begin() + index);
  invalidate();
  return item;
}

std::vector<QLayoutItem*> AdaptiveGrid::shownItems() const {
  std::vector<QLayoutItem*> shown;
  std::copy_if(items_.begin(), items_.end(), std::back_inserter(shown),
               [](const QLayoutItem* item) { return !item->isEmpty(); });
  return shown;
}

int AdaptiveGrid::arrange(const QRect& area, bool places) const {
  const std::vector<QLayoutItem*> items = shownItems();
  if (items.empty()) return 0;
  const int columns = columnsAt(area.width(), static_cast<int>(items.size()));
  // A remainder is spread: the last column ends where the area does.
  const auto left = [&](int column) { return column * (area.width() + gap_) / columns; };
  const auto width = [&](int column) { return std::max(0, left(column + 1) - gap_ - left(column)); };

  int top = 0;
  for (std::size_t first = 0; first < items.size(); first += static_cast<std::size_t>(columns)) {
    const auto inRow = std::min(static_cast<std::size_t>(columns), items.size() - first);
    int height = 0;
    for (std::size_t index = 0; index < inRow; ++index) {
      const QLayoutItem* item = items[first + index];
      const int own = item->hasHeightForWidth()
                          ? item->heightForWidth(width(static_cast<int>(index)) + 2 * outset_)
                          : item->sizeHint().height();
      height = std::max({height, own - 2 * outset_, item->minimumSize().height() - 2 * outset_});
    }
    for (std::size_t index = 0; places && index < inRow; ++index) {
      const int column = static_cast<int>(index);
      const QRect cell(area.left() + left(column), area.top() + top, width(column), height);
      const QWidget* parent = parentWidget();
      const bool mirrored = parent != nullptr && parent->layoutDirection() == Qt::RightToLeft;
      QRect placed = cell;
      if (mirrored) placed.moveRight(area.right() - (cell.left() - area.left()));
      place(*items[first + index], placed.adjusted(-outset_, -outset_, outset_, outset_));
    }
    top += height + gap_;
  }
  return top - gap_;
}

int AdaptiveGrid::heightForWidth(int width) const {
  if (width != knownWidth_) {
    const QMargins margins = contentsMargins();
    const QRect area(0, 0, width - margins.left() - margins.right(), 0);
    knownHeight_ = arrange(area, false) + margins.top() + margins.bottom();
    knownWidth_ = width;
  }
  return knownHeight_;
}

QSize AdaptiveGrid::sizeHint() const {
  const QMargins margins = contentsMargins();
  const int width = minimum_ + margins.left() + margins.right();
  return {width, heightForWidth(width)};
}

QSize AdaptiveGrid::minimumSize() const {
  int width = 0, height = 0;
  for (const QLayoutItem* item : shownItems()) {
    width = std::max(width, item->minimumSize().width() - 2 * outset_);
    height = std::max(height, item->minimumSize().height() - 2 * outset_);
  }
  const QMargins margins = contentsMargins();
  return {width + margins.left() + margins.right(), height + margins.top() + margins.bottom()};
}

void AdaptiveGrid::setGeometry(const QRect& rect) {
  QLayout::setGeometry(rect);
  arrange(contentsRect(), true);
}

void AdaptiveGrid::invalidate() {
  knownWidth_ = -1;
  QLayout::invalidate();
}

} // namespace ventolith::ui
