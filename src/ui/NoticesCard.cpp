#include "ui/NoticesCard.h"

#include "ui/kit/TextLabel.h"
#include "ui/state/AboutContent.h"

#include <QAbstractTextDocumentLayout>
#include <QKeyEvent>
#include <QScrollArea>
#include <QTextBlock>
#include <QTextBlockFormat>
#include <QTextCursor>
#include <QVBoxLayout>
#include <QWheelEvent>

#include <cmath>

namespace ventolith::ui {

namespace {

bool isScrolling(const QKeyEvent& event) {
  if (event.modifiers() & (Qt::ShiftModifier | Qt::ControlModifier)) return false; // Selects.
  switch (event.key()) {
  case Qt::Key_Up:
  case Qt::Key_Down:
  case Qt::Key_PageUp:
  case Qt::Key_PageDown:
  case Qt::Key_Space: return true;
  default: return false;
  }
}

QScrollArea* areaAround(const QWidget& widget) {
  for (QWidget* around = widget.parentWidget(); around != nullptr; around = around->parentWidget())
    if (auto* area = qobject_cast<QScrollArea*>(around)) return area;
  return nullptr;
}

} // namespace

NoticesText::NoticesText(const Theme& theme, const QString& text, QWidget* parent)
    : QTextEdit(parent),
      theme_(theme),
      feel_(theme, *this, [this] { return RingShape{QRectF(rect()), metrics::smallButtonRadius}; }) {
  setFrameShape(NoFrame);
  setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
  setReadOnly(true);
  setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
  setTabChangesFocus(true);
  setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  setWordWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere); // A long address is not to be cut off.
  viewport()->setAutoFillBackground(false);
  document()->setDocumentMargin(0);
  document()->setUndoRedoEnabled(false);
  setFont(fontOf(TextRole::notices));
  setPlainText(text);
  setLines();

  connect(document()->documentLayout(), &QAbstractTextDocumentLayout::documentSizeChanged, this,
          [this](const QSizeF& size) { setFixedHeight(static_cast<int>(std::ceil(size.height()))); });
  connect(&theme, &Theme::changed, this, &NoticesText::takeColors);
  takeColors();
}

void NoticesText::setLines() {
  QTextBlockFormat lines;
  lines.setLineHeight(styleOf(TextRole::notices).line, QTextBlockFormat::FixedHeight);
  QTextCursor all(document());
  all.select(QTextCursor::Document);
  all.mergeBlockFormat(lines);
}

void NoticesText::showEndOfSelection() {
  QScrollArea* const area = areaAround(*this);
  if (area == nullptr || !textCursor().hasSelection()) return;
  const QPoint end = mapTo(area->widget(), cursorRect().center());
  area->ensureVisible(end.x(), end.y(), 0, styleOf(TextRole::notices).line);
}

void NoticesText::takeColors() {
  const Palette& house = theme_.palette();
  QPalette colors = palette();
  colors.setColor(QPalette::Text, house.secondaryText);
  colors.setColor(QPalette::Base, Qt::transparent);
  colors.setColor(QPalette::Highlight, house.accentFill);
  colors.setColor(QPalette::HighlightedText, house.onAccent);
  setPalette(colors);
}

void NoticesText::keyPressEvent(QKeyEvent* event) {
  if (isScrolling(*event)) return event->ignore();
  QTextEdit::keyPressEvent(event);
  const bool isSelecting = event->modifiers() & Qt::ShiftModifier;
  if (isSelecting) showEndOfSelection();
}

void NoticesText::mouseMoveEvent(QMouseEvent* event) {
  QTextEdit::mouseMoveEvent(event);
  if (event->buttons() & Qt::LeftButton) showEndOfSelection();
}

/// Qt lays a long text out step by step, by which the screen would grow under the reader.
void NoticesText::resizeEvent(QResizeEvent* event) {
  QTextEdit::resizeEvent(event);
  static_cast<void>(document()->documentLayout()->blockBoundingRect(document()->lastBlock()));
}

void NoticesText::wheelEvent(QWheelEvent* event) {
  event->ignore();
}

NoticesCard::NoticesCard(const Theme& theme, const QString& folder, QWidget* parent) : Card(theme, parent) {
  const AboutTexts texts = aboutTexts();
  setTitle(texts.noticesHeading);
  layout()->setSpacing(metrics::space8); // The first line of notices stands low in its height.
  if (const auto notices = thirdPartyNotices(folder)) {
    auto* text = new NoticesText(theme, *notices);
    text->setAccessibleName(texts.noticesHeading);
    content()->addWidget(text);
    return;
  }
  auto* none = new TextLabel(theme, TextRole::secondary, &Palette::secondaryText);
  none->setFit(Fit::wrapped);
  none->setText(texts.noNotices);
  content()->addWidget(none);
}

} // namespace ventolith::ui
