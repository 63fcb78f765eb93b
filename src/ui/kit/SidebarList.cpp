#include "ui/kit/SidebarList.h"

#include "ui/kit/Metrics.h"
#include "ui/kit/Painting.h"
#include "ui/kit/Theme.h"
#include "ui/kit/Type.h"

#include <QMouseEvent>
#include <QPainter>
#include <QPalette>
#include <QSignalBlocker>
#include <QStyledItemDelegate>

namespace ventolith::ui {

class SidebarList::RowPainter final : public QStyledItemDelegate {
public:
  explicit RowPainter(const SidebarList& list) : list_(list) {}

  void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override {
    list_.paintRow(*painter, option.rect, index.row());
  }
  [[nodiscard]] QSize sizeHint(const QStyleOptionViewItem&, const QModelIndex&) const override {
    return {iconSide, rowHeight + rowGap};
  }

private:
  const SidebarList& list_;
};

SidebarList::SidebarList(const Theme& theme, QWidget* parent)
    : QListWidget(parent),
      theme_(theme),
      rowPainter_(std::make_unique<RowPainter>(*this)),
      selection_(theme, *viewport(), metrics::selectionMotion),
      hovering_(theme, *viewport(), metrics::hoverMotion),
      feel_(theme, *this, [this] { return RingShape{rowRect(currentRow()), metrics::controlRadius}; }) {
  setItemDelegate(rowPainter_.get());
  setFrameShape(QFrame::NoFrame);
  setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  setEditTriggers(NoEditTriggers);
  setUniformItemSizes(true);
  setAutoFillBackground(true);
  viewport()->setAutoFillBackground(false);
  viewport()->setMouseTracking(true);
  setViewportMargins(margin, firstRow, margin, margin);
  setMinimumWidth(metrics::sidebarMinimum);
  setMaximumWidth(metrics::sidebarMaximum);
  setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Expanding);
  theme.repaints(viewport());
  takeColors();
  connect(&theme, &Theme::changed, this, &SidebarList::takeColors);
  connect(this, &QListWidget::currentRowChanged, this, &SidebarList::choose);
}

SidebarList::~SidebarList() {
  setItemDelegate(nullptr);
}

void SidebarList::takeColors() {
  QPalette colors = palette();
  colors.setColor(QPalette::Window, theme_.palette().sidebarBackground);
  setPalette(colors);
}

void SidebarList::setRows(const std::vector<SidebarRow>& rows) {
  const QSignalBlocker quiet(this);
  clear();
  rows_ = rows;
  for (const SidebarRow& row : rows_)
    addItem(row.title);
  setCurrentRow(rows_.empty() ? -1 : 0);
  formerRow_ = -1;
  chosenRow_ = currentRow();
  selection_.jumpTo(1);
}

QSize SidebarList::sizeHint() const {
  return {metrics::sidebarWidth, metrics::windowMinimumHeight};
}

QRectF SidebarList::rowRect(int row) const {
  const QRect item = row < 0 ? QRect() : visualItemRect(this->item(row));
  return QRectF(item).translated(viewport()->pos()).adjusted(0, 0, 0, -rowGap);
}

void SidebarList::choose(int row) {
  formerRow_ = chosenRow_;
  chosenRow_ = row;
  selection_.jumpTo(0);
  selection_.moveTo(1);
  feel_.refreshRing();
}

void SidebarList::hover(int row) {
  if (row == hoveredRow_) return;
  if (row >= 0) {
    hoveredRow_ = row;
    hovering_.jumpTo(0);
    hovering_.moveTo(1);
  } else {
    hoveredRow_ = -1;
    hovering_.jumpTo(0);
  }
}

bool SidebarList::viewportEvent(QEvent* event) {
  if (event->type() == QEvent::Leave) hover(-1);
  return QListWidget::viewportEvent(event);
}

void SidebarList::mouseMoveEvent(QMouseEvent* event) {
  const QModelIndex index = indexAt(event->position().toPoint());
  hover(index.isValid() ? index.row() : -1);
  // Choosing takes a press: a drag across the rows is not to flip through the screens.
  if (event->buttons() == Qt::NoButton) QListWidget::mouseMoveEvent(event);
}

double SidebarList::chosenPart(int row) const {
  if (row == chosenRow_) return selection_.value();
  return row == formerRow_ ? 1 - selection_.value() : 0;
}

void SidebarList::paintRow(QPainter& painter, const QRect& rect, int row) const {
  const Palette& palette = theme_.palette();
  const SidebarRow& its = rows_[static_cast<std::size_t>(row)];
  const QRectF ground = QRectF(rect).adjusted(0, 0, 0, -rowGap);
  const bool isChosen = row == chosenRow_;
  if (row == hoveredRow_ && !isChosen) {
    const QColor fill = faded(palette.primaryText, metrics::hoverMixPlain * hovering_.value());
    paintBox(painter, ground, {.fill = fill, .radius = metrics::smallButtonRadius});
  }
  if (const double part = chosenPart(row); part > 0) {
    paintBox(painter, ground,
             {.fill = faded(palette.sidebarSelection, part), .radius = metrics::controlRadius});
  }
  const bool isLeading = layoutDirection() == Qt::LeftToRight;
  const double iconLeft = isLeading ? ground.left() + rowPadding : ground.right() - rowPadding - iconSide;
  const QRectF icon(iconLeft, ground.center().y() - iconSide / 2.0, iconSide, iconSide);
  theme_.icons().paint(painter, icon, its.symbol, isChosen ? palette.accent : palette.secondaryText);

  const double taken = rowPadding + iconSide + iconGap;
  const QRectF words =
      isLeading ? ground.adjusted(taken, 0, -rowPadding, 0) : ground.adjusted(rowPadding, 0, -taken, 0);
  TextLine(its.title, isChosen ? TextRole::bodyStrong : TextRole::button)
      .elided(words.width())
      .paint(painter, words, palette.primaryText);
}

} // namespace ventolith::ui
