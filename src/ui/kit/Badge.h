// A capsule with an icon and a word: a fan's mode, an active preset.
#pragma once

#include "ui/kit/Palette.h"
#include "ui/kit/Symbol.h"
#include "ui/kit/Type.h"

#include <QLabel>

namespace ventolith::ui {

class Theme;

enum class BadgeStyle {
  quiet,  ///< "Auto": nothing was asked for.
  strong, ///< Any other mode.
  active, ///< The preset that holds.
};
enum class BadgeSize { normal, small };

class Badge : public QLabel {
  Q_OBJECT

public:
  explicit Badge(const Theme& theme, BadgeSize size = BadgeSize::normal, QWidget* parent = nullptr);

  void setContent(Symbol symbol, const QString& text, BadgeStyle style);

  [[nodiscard]] QSize sizeHint() const override;
  [[nodiscard]] QSize minimumSizeHint() const override { return sizeHint(); }

protected:
  void paintEvent(QPaintEvent*) override;

private:
  [[nodiscard]] TextLine line() const;

  const Theme& theme_;
  BadgeSize size_;
  Symbol symbol_ = Symbol::uturn;
  BadgeStyle style_ = BadgeStyle::quiet;
};

} // namespace ventolith::ui
