// The smallest pieces that only show: an icon, a dot, a line between two things.
#pragma once

#include "ui/kit/Palette.h"
#include "ui/kit/Symbol.h"

#include <QWidget>

namespace ventolith::ui {

class Theme;

/// An icon in a colour of the theme. Decoration: it has no name of its own for assistive technology.
class IconView : public QWidget {
  Q_OBJECT

public:
  IconView(const Theme& theme, Symbol symbol, int size, ColorRole color, QWidget* parent = nullptr);

  void setSymbol(Symbol symbol);
  void setColor(ColorRole color);
  [[nodiscard]] QSize sizeHint() const override { return {size_, size_}; }

protected:
  void paintEvent(QPaintEvent*) override;

private:
  const Theme& theme_;
  Symbol symbol_;
  int size_;
  ColorRole color_;
};

/// A filled circle in any colour: a temperature's, a preset's.
class Dot : public QWidget {
  Q_OBJECT

public:
  Dot(int diameter, const QColor& color, QWidget* parent = nullptr);

  void setColor(const QColor& color);
  [[nodiscard]] QSize sizeHint() const override { return {diameter_, diameter_}; }

protected:
  void paintEvent(QPaintEvent*) override;

private:
  int diameter_;
  QColor color_;
};

/// A line, one device pixel or as many as make up a logical one, from edge to edge.
class Divider : public QWidget {
  Q_OBJECT

public:
  Divider(const Theme& theme, Qt::Orientation orientation, QWidget* parent = nullptr);

  [[nodiscard]] QSize sizeHint() const override { return {1, 1}; }

protected:
  void paintEvent(QPaintEvent*) override;

private:
  const Theme& theme_;
};

} // namespace ventolith::ui
