// ui-gallery FOLDER: writes every page, light and dark, at 1x and 2x (and 1.5x with --fractions).
#include "Gallery.h"

#include "ui/kit/Type.h"

#include <QApplication>
#include <QDir>
#include <QImage>
#include <QLayout>
#include <QPainter>

#include <cstdio>

namespace ventolith::ui::gallery {
namespace {

class Ground final : public QWidget {
public:
  Ground(const Theme& theme, ColorRole role) : theme_(theme), role_(role) { theme.repaints(this); }

protected:
  void paintEvent(QPaintEvent*) override { QPainter(this).fillRect(rect(), theme_.color(role_)); }

private:
  const Theme& theme_;
  ColorRole role_;
};

QString fileOf(const Page& page, Appearance appearance, double scale) {
  const QString look = appearance == Appearance::dark ? QStringLiteral("dark") : QStringLiteral("light");
  return QStringLiteral("%1-%2-%3x.png").arg(page.name, look).arg(scale);
}

bool writeAll(const QDir& folder, const std::vector<double>& scales) {
  for (const Page& page : {lookPage(), piecesPage(), fansPage(), controlsPage()})
    for (const Appearance appearance : {Appearance::light, Appearance::dark}) {
      Theme theme;
      theme.force({.appearance = appearance, .reduceMotion = true});
      const std::unique_ptr<QWidget> widget = page.make(theme);
      for (const double scale : scales)
        if (!pictureOf(*widget, page.size, scale).save(folder.filePath(fileOf(page, appearance, scale))))
          return false;
    }
  return true;
}

} // namespace

std::unique_ptr<QWidget> makeGround(const Theme& theme, ColorRole role) {
  return std::make_unique<Ground>(theme, role);
}

QImage pictureOf(QWidget& page, QSize size, double scale) {
  page.setAttribute(Qt::WA_DontShowOnScreen);
  page.resize(size);
  page.show();
  QApplication::processEvents();
  QImage image(size * scale, QImage::Format_ARGB32_Premultiplied);
  image.setDevicePixelRatio(scale);
  image.fill(Qt::transparent);
  page.render(&image);
  return image;
}

} // namespace ventolith::ui::gallery

int main(int count, char** arguments) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  if (!qEnvironmentVariableIsSet("VENTOLITH_UI_FONT")) qputenv("VENTOLITH_UI_FONT", "Inter");
  QApplication application(count, arguments);
  ventolith::ui::applyRequestedFont();
  const QStringList given = QApplication::arguments();
  if (given.size() < 2) {
    std::fputs("usage: ui-gallery FOLDER [--fractions]\n", stderr);
    return 64;
  }
  const QDir folder(given[1]);
  if (!folder.mkpath(QStringLiteral("."))) {
    std::fputs("ui-gallery: the folder cannot be made\n", stderr);
    return 1;
  }
  std::vector<double> scales{1, 2};
  if (given.contains(QStringLiteral("--fractions"))) scales.push_back(1.5);
  if (ventolith::ui::gallery::writeAll(folder, scales)) return 0;
  std::fputs("ui-gallery: a picture could not be written\n", stderr);
  return 1;
}
