#include "ui/NoticesCard.h"

#include "ui/kit/TextLabel.h"
#include "ui/state/AboutContent.h"

#include <QAbstractTextDocumentLayout>
#include <QKeyEvent>
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

} // namespace

NoticesText::NoticesText(const Theme& theme, const QString& text, QWidget* parent)
    : QTextEdit(parent), theme_(theme) {
  setFrameShape(NoFrame);
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

  QTextBlockFormat lines;
  lines.setLineHeight(styleOf(TextRole::notices).line, QTextBlockFormat::FixedHeight);
  QTextCursor all(document());
  all.select(QTextCursor::Document);
  all.mergeBlockFormat(lines);

  connect(document()->documentLayout(), &QAbstractTextDocumentLayout::documentSizeChanged, this,
          [this](const QSizeF& size) { setFixedHeight(static_cast<int>(std::ceil(size.height()))); });
  connect(&theme, &Theme::changed, this, &NoticesText::takeColors);
  takeColors();
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
