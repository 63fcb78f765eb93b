#include "ui/kit/FollowsQt.h"

#include <QEvent>
#include <QGuiApplication>
#include <QPalette>
#include <QStyleHints>

namespace ventolith::ui {

FollowsQt::FollowsQt(Theme& theme, QObject* parent) : QObject(parent), theme_(theme) {
  qGuiApp->installEventFilter(this);
#if QT_VERSION >= QT_VERSION_CHECK(6, 5, 0)
  connect(QGuiApplication::styleHints(), &QStyleHints::colorSchemeChanged, this, [this] { read(); });
#endif
  read();
}

bool FollowsQt::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::ApplicationPaletteChange && watched == qGuiApp) read();
  return QObject::eventFilter(watched, event);
}

SystemLook FollowsQt::lookOf(const QPalette& palette) {
  SystemLook look;
  const auto lightness = [&](QPalette::ColorRole role) { return palette.color(role).lightnessF(); };
  look.appearance =
      lightness(QPalette::Window) < lightness(QPalette::WindowText) ? Appearance::dark : Appearance::light;
#if QT_VERSION >= QT_VERSION_CHECK(6, 6, 0)
  // Qt's own default is no choice of anybody's.
  if (palette.isBrushSet(QPalette::Active, QPalette::Accent)) look.accent = palette.color(QPalette::Accent);
#endif
  return look;
}

void FollowsQt::read() {
  SystemLook look = lookOf(QGuiApplication::palette());
#if QT_VERSION >= QT_VERSION_CHECK(6, 5, 0)
  switch (QGuiApplication::styleHints()->colorScheme()) {
  case Qt::ColorScheme::Dark: look.appearance = Appearance::dark; break;
  case Qt::ColorScheme::Light: look.appearance = Appearance::light; break;
  case Qt::ColorScheme::Unknown: break;
  }
#endif
  theme_.setToolkitLook(look);
}

} // namespace ventolith::ui
