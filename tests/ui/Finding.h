// Finding what a view shows, as a person would: by its words.
#pragma once

#include "ui/kit/Button.h"

#include <QLabel>
#include <QString>
#include <QStringList>
#include <QTest>
#include <QWidget>

#include <gtest/gtest.h>

#include <ostream>
#include <stdexcept>
#include <string>
#include <vector>

namespace ventolith::ui {

/// Every label that is not hidden, in the order in which they were made.
inline QStringList textsIn(const QWidget& view) {
  QStringList texts;
  for (const QLabel* label : view.findChildren<QLabel*>())
    if (label->isVisibleTo(&view)) texts << label->text();
  return texts;
}

inline bool shows(const QWidget& view, const char* text) {
  return textsIn(view).contains(QString::fromUtf8(text));
}

/// All of a kind that are not hidden, in the order in which they were made.
template <class Widget>
std::vector<Widget*> seenIn(const QWidget& view) {
  std::vector<Widget*> seen;
  for (Widget* widget : view.findChildren<Widget*>())
    if (widget->isVisibleTo(&view)) seen.push_back(widget);
  return seen;
}

inline bool hasButton(const QWidget& view, const char* title) {
  for (const Button* button : seenIn<Button>(view))
    if (button->title() == QString::fromUtf8(title)) return true;
  return false;
}

/// The first button of that title. Fails the test if there is none.
inline Button& buttonIn(const QWidget& view, const char* title) {
  for (Button* button : seenIn<Button>(view))
    if (button->title() == QString::fromUtf8(title)) return *button;
  throw std::logic_error(std::string("no button is called ") + title);
}

inline void click(QWidget& control) {
  QTest::mouseClick(&control, Qt::LeftButton);
}

/// Counts how often a widget paints itself.
class PaintCount final : public QObject {
public:
  explicit PaintCount(QWidget& widget) { widget.installEventFilter(this); }

  [[nodiscard]] int count() const { return count_; }

protected:
  bool eventFilter(QObject*, QEvent* event) override {
    if (event->type() == QEvent::Paint) ++count_;
    return false;
  }

private:
  int count_ = 0;
};

} // namespace ventolith::ui
