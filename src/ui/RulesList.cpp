#include "ui/RulesList.h"

#include "ui/RuleRow.h"
#include "ui/RulesAccessibility.h"
#include "ui/kit/Button.h"
#include "ui/kit/Painting.h"
#include "ui/state/RuleRowContent.h"

#include <QApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QPropertyAnimation>
#include <QShortcut>

#include <algorithm>
#include <numeric>
#include <utility>

namespace ventolith::ui {

/// Of the row that is dragged, over all others.
class DragShadow final : public QWidget {
public:
  DragShadow(const Theme& theme, QWidget* parent) : QWidget(parent), theme_(theme) {
    setAttribute(Qt::WA_TransparentForMouseEvents);
    hide();
  }

  void follow(const QWidget& row) {
    const int reach = reachOf(menuShadow(theme_.palette()));
    setGeometry(row.geometry().adjusted(-reach, -reach, reach, reach));
  }

protected:
  void paintEvent(QPaintEvent*) override {
    const Shadow shadow = menuShadow(theme_.palette());
    const int reach = reachOf(shadow);
    QPainter painter(this);
    paintShadow(painter, rect().adjusted(reach, reach, -reach, -reach), metrics::cardRadius, shadow);
  }

private:
  const Theme& theme_;
};

namespace {

constexpr int scrollStep = 4; // Pixels, and as many more as are free around a row.
constexpr std::chrono::milliseconds scrollPause{16};

QString keyText(Qt::Key key) {
  return QKeySequence(Qt::ALT | key).toString(QKeySequence::NativeText);
}

QPropertyAnimation* motionOf(const RuleRow& row) {
  return row.findChild<QPropertyAnimation*>(QString(), Qt::FindDirectChildrenOnly);
}

} // namespace

RulesList::RulesList(const ViewContext& context, QWidget& before, QWidget* parent,
                     std::unique_ptr<Pulse> pulse)
    : QWidget(parent),
      context_(context),
      before_(before),
      shadow_(new DragShadow(context.theme, this)),
      pulse_(std::move(pulse)) {
  installRulesAccessibility();
  setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
  setAccessibleName(rulesTexts().title);
  for (const auto& [key, step] : {std::pair{Qt::Key_Up, Step::up}, std::pair{Qt::Key_Down, Step::down}}) {
    auto* shortcut = new QShortcut(QKeySequence(Qt::ALT | key), this);
    shortcut->setContext(Qt::WidgetWithChildrenShortcut);
    connect(shortcut, &QShortcut::activated, this, [this, by = step] { moveFocusedRow(by); });
  }
}

RulesList::~RulesList() = default;

void RulesList::refresh() {
  const std::optional<std::size_t> focused = placeOfFocus();
  const RuleRow* const held = focused ? rows_[*focused] : nullptr;
  const std::vector<RuleRow*> before = rows_;
  takeRules();
  if (rows_ == before) return;

  cancelDrag();
  settleStops();
  updateGeometry();
  place(Motion::sliding);
  for (RuleRow* row : before) {
    if (std::find(rows_.begin(), rows_.end(), row) != rows_.end()) continue;
    const bool hadFocus = row == held;
    const bool isByPointer = row->deleteButton().underMouse();
    row->hide();
    row->deleteLater();
    if (hadFocus) focusRow(*focused, isByPointer ? Qt::MouseFocusReason : Qt::TabFocusReason);
  }
}

/// A row follows its rule.
void RulesList::takeRules() {
  std::vector<RuleRow*> known = std::exchange(rows_, {});
  for (const core::FanRule& rule : context_.model.activePlan().rules) {
    const auto isIts = [&](const RuleRow* row) { return row->rule().id == rule.id; };
    const auto found = std::find_if(known.begin(), known.end(), isIts);
    if (found != known.end()) {
      (*found)->refresh(rule);
      rows_.push_back(*found);
      known.erase(found); // Two rules of one identifier have a row each.
      continue;
    }
    rows_.push_back(new RuleRow(context_, rule, this));
    rows_.back()->show();
  }
}

/// The way of the keyboard, and what is said of each row.
void RulesList::settleStops() {
  QWidget* last = &before_;
  for (std::size_t at = 0; at < rows_.size(); ++at) {
    for (QWidget* stop : rows_[at]->tabStops())
      setTabOrder(std::exchange(last, stop), stop);
    rows_[at]->setAccessibleDescription(tr("Rule %1 of %2. %3 and %4 move it.")
                                            .arg(at + 1)
                                            .arg(rows_.size())
                                            .arg(keyText(Qt::Key_Up), keyText(Qt::Key_Down)));
  }
}

std::optional<std::size_t> RulesList::placeOf(const QWidget* widget) const {
  const auto holdsIt = [widget](const RuleRow* row) { return row == widget || row->isAncestorOf(widget); };
  const auto found = std::find_if(rows_.begin(), rows_.end(), holdsIt);
  if (widget == nullptr || found == rows_.end()) return std::nullopt;
  return static_cast<std::size_t>(found - rows_.begin());
}

std::optional<std::size_t> RulesList::placeOfFocus() const {
  return placeOf(QApplication::focusWidget());
}

void RulesList::focusRow(std::size_t place, Qt::FocusReason reason) {
  if (rows_.empty()) return before_.setFocus(reason);
  const std::size_t nearest = std::min(place, rows_.size() - 1);
  rows_[nearest]->setFocus(reason);
  Q_EMIT isWorkedOn(slot(nearest));
}

QSize RulesList::sizeHint() const {
  const QMargins margins = contentsMargins();
  int height = rows_.empty() ? 0 : -gap;
  for (const RuleRow* row : rows_)
    height += row->sizeHint().height() + gap;
  return {0, margins.top() + height + margins.bottom()};
}

std::vector<int> RulesList::topsInOrder(const std::vector<std::size_t>& order) const {
  std::vector<int> tops(rows_.size());
  int top = contentsRect().top();
  for (const std::size_t at : order) {
    tops[at] = top;
    top += rows_[at]->sizeHint().height() + gap;
  }
  return tops;
}

/// Of each row, with the one that is dragged where it would drop.
std::vector<int> RulesList::tops() const {
  std::vector<std::size_t> order(rows_.size());
  std::iota(order.begin(), order.end(), std::size_t{0});
  if (!isDragging()) return topsInOrder(order);

  const auto dragged = order.begin() + static_cast<std::ptrdiff_t>(drag_->place);
  const auto target = order.begin() + static_cast<std::ptrdiff_t>(dropGap());
  if (target > dragged)
    std::rotate(dragged, dragged + 1, target);
  else
    std::rotate(target, dragged, dragged + 1);
  return topsInOrder(order);
}

QRect RulesList::slot(std::size_t place) const {
  const QRect area = contentsRect();
  return {area.left(), tops()[place], area.width(), rows_[place]->sizeHint().height()};
}

void RulesList::place(Motion motion) {
  const QRect area = contentsRect();
  const std::vector<int> tops = this->tops();
  for (std::size_t at = 0; at < rows_.size(); ++at) {
    rows_[at]->resize(area.width(), rows_[at]->sizeHint().height());
    const bool isInHand = isDragging() && drag_->place == at;
    if (!isInHand) slide(*rows_[at], {area.left(), tops[at]}, motion);
  }
}

void RulesList::slide(RuleRow& row, QPoint to, Motion motion) const {
  QPropertyAnimation* const running = motionOf(row);
  const bool isOnItsWay = running != nullptr && running->endValue().toPoint() == to;
  if (isOnItsWay && motion == Motion::sliding) return;
  delete running;

  const int duration = context_.theme.motion(metrics::selectionMotion);
  const bool isNew = !row.testAttribute(Qt::WA_Moved);
  if (motion == Motion::instant || duration <= 0 || isNew || !row.isVisible()) return row.move(to);
  if (row.pos() == to) return;
  auto* const sliding = new QPropertyAnimation(&row, "pos", &row);
  sliding->setEasingCurve(QEasingCurve::OutCubic);
  sliding->setDuration(duration);
  sliding->setEndValue(to);
  sliding->start(QAbstractAnimation::DeleteWhenStopped);
}

void RulesList::resizeEvent(QResizeEvent* event) {
  QWidget::resizeEvent(event);
  const bool isSameWidth = event->oldSize().width() == event->size().width();
  place(isSameWidth ? Motion::sliding : Motion::instant);
}

// Dragging.

void RulesList::mousePressEvent(QMouseEvent* event) {
  const QPoint position = event->position().toPoint();
  const auto pressed = placeOf(childAt(position));
  if (event->button() != Qt::LeftButton || !pressed) return event->ignore();
  cancelDrag(); // One that was let go where nobody saw it.
  drag_ = Drag{.place = *pressed,
               .pressed = event->globalPosition().toPoint(),
               .pointer = event->globalPosition().toPoint(),
               .grip = position.y() - rows_[*pressed]->y()};
}

void RulesList::mouseMoveEvent(QMouseEvent* event) {
  if (drag_) dragTo(event->globalPosition().toPoint());
}

void RulesList::mouseReleaseEvent(QMouseEvent* event) {
  if (event->button() == Qt::LeftButton) drop();
}

void RulesList::hideEvent(QHideEvent* event) {
  cancelDrag();
  QWidget::hideEvent(event);
}

void RulesList::dragTo(QPoint global) {
  drag_->pointer = global;
  if (!drag_->isMoving) {
    if ((global - drag_->pressed).manhattanLength() < QApplication::startDragDistance()) return;
    beginMoving();
  }
  RuleRow& row = *rows_[drag_->place];
  const QRect area = contentsRect();
  const int lowest = std::max(area.top(), area.top() + area.height() - row.height());
  row.move(area.left(), std::clamp(mapFromGlobal(global).y() - drag_->grip, area.top(), lowest));
  shadow_->follow(row);
  place(Motion::sliding);
  scrollAlong();
}

/// A step at a time for as long as the row is held beyond what is in sight, and there is more.
void RulesList::scrollAlong() {
  const auto inSight = [this] { return parentWidget()->rect().translated(-pos()); };
  const QRect row = rows_[drag_->place]->geometry();
  const QRect before = inSight();
  const bool isAbove = row.top() < before.top();
  if (!isAbove && row.bottom() <= before.bottom()) return pulse_->cancel();
  const int next = isAbove ? before.top() - scrollStep : before.bottom() + scrollStep;
  Q_EMIT isWorkedOn({row.left(), next, 1, 1});
  if (inSight() == before) return pulse_->cancel();
  pulse_->after(scrollPause, [this] {
    if (isDragging()) dragTo(drag_->pointer);
  });
}

void RulesList::beginMoving() {
  drag_->isMoving = true;
  RuleRow& row = *rows_[drag_->place];
  delete motionOf(row);
  shadow_->show();
  shadow_->raise();
  row.raise();
}

/// By the edge that goes ahead: a row changes places with the next one when it covers half of it.
std::size_t RulesList::dropGap() const {
  std::vector<std::size_t> order(rows_.size());
  std::iota(order.begin(), order.end(), std::size_t{0});
  const std::vector<int> resting = topsInOrder(order);
  std::vector<double> middles;
  for (std::size_t at = 0; at < rows_.size(); ++at)
    middles.push_back(resting[at] + rows_[at]->height() / 2.0);
  const QRect row = rows_[drag_->place]->geometry();
  const bool isDown = row.top() > resting[drag_->place];
  return gapAt(isDown ? row.top() + row.height() : row.top(), middles);
}

void RulesList::drop() {
  if (!isDragging()) return drag_.reset();
  const auto wanted = moveByDrop(drag_->place, dropGap(), rows_.size());
  cancelDrag();
  if (wanted) move(*wanted);
}

/// The row returns to its place.
void RulesList::cancelDrag() {
  const bool wasMoving = isDragging();
  drag_.reset();
  pulse_->cancel();
  shadow_->hide();
  if (wasMoving) place(Motion::sliding);
}

// By keyboard.

std::optional<RuleMove> RulesList::stepMove(const RuleRow& row, Step step) const {
  const auto at = placeOf(&row);
  if (!at) return std::nullopt;
  return step == Step::up ? moveUp(*at, rows_.size()) : moveDown(*at, rows_.size());
}

bool RulesList::canMove(const RuleRow& row, Step step) const {
  return stepMove(row, step).has_value();
}

void RulesList::moveRow(const RuleRow& row, Step step) {
  const auto wanted = stepMove(row, step);
  if (!wanted) return;
  move(*wanted);
  Q_EMIT isWorkedOn(slot(placeOf(&row).value_or(0)));
}

void RulesList::moveFocusedRow(Step step) {
  const auto focused = placeOfFocus();
  if (focused && !isDragging()) moveRow(*rows_[*focused], step);
}

void RulesList::move(const RuleMove& move) {
  context_.model.moveRules(move.from, move.destination);
  refresh(); // Here and now: the rows go on from where they are.
}

void RulesList::keyPressEvent(QKeyEvent* event) {
  if (event->key() == Qt::Key_Escape && isDragging()) return cancelDrag();
  const auto focused = placeOfFocus();
  const bool isOfRow = focused && rows_[*focused]->hasFocus();
  if (isOfRow && event->key() == Qt::Key_Down) return focusRow(*focused + 1, Qt::TabFocusReason);
  if (isOfRow && event->key() == Qt::Key_Up)
    return focusRow(*focused > 0 ? *focused - 1 : 0, Qt::TabFocusReason);
  QWidget::keyPressEvent(event);
}

} // namespace ventolith::ui
