// ui-pictures FOLDER [WORD...]: writes every page whose name begins with one of the words (all without any),
// light and dark, at twice the size. `--size=WIDTHxHEIGHT` replaces a page's sizes.
#include "Pages.h"

#include "ui/kit/Type.h"

#include <QApplication>
#include <QDir>
#include <QImage>

#include <algorithm>
#include <cstdio>
#include <optional>

namespace ventolith::ui::pictures {

QImage pictureOf(QWidget& view) {
  constexpr double scale = 2;
  QImage image(view.size() * scale, QImage::Format_ARGB32_Premultiplied);
  image.setDevicePixelRatio(scale);
  image.fill(Qt::transparent);
  view.render(&image);
  return image;
}

namespace {

struct Order {
  QDir folder;
  QStringList words;
  std::optional<QSize> size;

  [[nodiscard]] bool wants(const QString& name) const {
    return words.isEmpty() || std::any_of(words.begin(), words.end(),
                                          [&](const QString& word) { return name.startsWith(word); });
  }
};

std::optional<Order> orderFrom(const QStringList& arguments) {
  if (arguments.size() < 2) return std::nullopt;
  Order order{.folder = QDir(arguments[1]), .words = arguments.mid(2), .size = std::nullopt};
  for (const QString& word : arguments.mid(2)) {
    if (!word.startsWith(QStringLiteral("--size="))) continue;
    const QStringList sides = word.mid(7).split(QLatin1Char('x'));
    if (sides.size() != 2) return std::nullopt;
    order.size = QSize(sides[0].toInt(), sides[1].toInt());
    order.words.removeOne(word);
  }
  return order;
}

bool write(const Order& order, const Page& page, Appearance appearance) {
  Scene scene(page.situation, appearance);
  QWidget& view = page.make(scene);
  const QString look = appearance == Appearance::dark ? QStringLiteral("dark") : QStringLiteral("light");
  std::vector<QSize> sizes = order.size ? std::vector{*order.size} : page.sizes;
  if (sizes.empty()) sizes.push_back(view.sizeHint());
  for (const QSize& size : sizes) {
    view.resize(size);
    view.show();
    scene.settleDown();
    const QString file =
        QStringLiteral("%1-%2-%3x%4.png").arg(page.name, look).arg(view.width()).arg(view.height());
    constexpr int quick = 60; // Little compression: there are many.
    if (!pictureOf(view).save(order.folder.filePath(file), "PNG", quick)) return false;
  }
  return true;
}

bool writeAll(const Order& order) {
  for (const std::vector<Page>& pages : {windowPages(), menuBarPages(), curvePages(), workPages()})
    for (const Page& page : pages)
      for (const Appearance appearance : {Appearance::light, Appearance::dark})
        if (order.wants(page.name) && !write(order, page, appearance)) return false;
  return true;
}

} // namespace
} // namespace ventolith::ui::pictures

int main(int count, char** arguments) {
  using namespace ventolith::ui;
  qputenv("QT_QPA_PLATFORM", "offscreen");
  qputenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent");
  if (!qEnvironmentVariableIsSet("VENTOLITH_UI_FONT")) qputenv("VENTOLITH_UI_FONT", "Inter");
  const QApplication application(count, arguments);
  applyRequestedFont();
  const auto order = pictures::orderFrom(QApplication::arguments());
  if (!order) {
    std::fputs("usage: ui-pictures FOLDER [--size=WIDTHxHEIGHT] [WORD...]\n", stderr);
    return 64;
  }
  if (order->folder.mkpath(QStringLiteral(".")) && pictures::writeAll(*order)) return 0;
  std::fputs("ui-pictures: a picture could not be written\n", stderr);
  return 1;
}
