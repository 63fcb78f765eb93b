#include "ui/state/AppSection.h"

#include <QCoreApplication>

namespace ventolith::ui {

namespace {

struct Entry {
  const char* title;
  const char* symbol;
};

Entry entry(AppSection section) {
  switch (section) {
  case AppSection::dashboard:
    return {QT_TRANSLATE_NOOP("AppSection", "Dashboard"), "gauge.with.dots.needle.67percent"};
  case AppSection::curves:
    return {QT_TRANSLATE_NOOP("AppSection", "Fan Curves"), "chart.line.uptrend.xyaxis"};
  case AppSection::rules: return {QT_TRANSLATE_NOOP("AppSection", "Rules"), "square.grid.3x3"};
  case AppSection::presets: return {QT_TRANSLATE_NOOP("AppSection", "Presets"), "square.stack.3d.up"};
  case AppSection::about: break;
  }
  return {QT_TRANSLATE_NOOP("AppSection", "About"), "info.circle"};
}

} // namespace

QString title(AppSection section) {
  return QCoreApplication::translate("AppSection", entry(section).title);
}

QString symbol(AppSection section) {
  return QString::fromLatin1(entry(section).symbol);
}

} // namespace ventolith::ui
