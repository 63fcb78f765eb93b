// `ventolith-icon DRAWING FILE`: makes the application's icon for macOS from an SVG drawing, while it is
// built.
#include "IconFile.h"

#include <QSaveFile>
#include <QString>
#include <QSvgRenderer>

#include <cstdio>
#include <cstdlib>

namespace {

int fail(const char* what, const char* file) {
  std::fprintf(stderr, "ventolith-icon: %s: %s\n", file, what);
  return EXIT_FAILURE;
}

} // namespace

int main(int argumentCount, char** arguments) {
  if (argumentCount != 3) {
    std::fprintf(stderr, "usage: ventolith-icon DRAWING FILE\n");
    return 2;
  }
  QSvgRenderer drawing(QString::fromLocal8Bit(arguments[1]));
  if (!drawing.isValid()) return fail("is no SVG drawing", arguments[1]);
  const QByteArray icon = ventolith::packaging::iconFileOf(drawing);
  if (icon.isEmpty()) return fail("its pictures cannot be made", arguments[1]);
  QSaveFile file(QString::fromLocal8Bit(arguments[2]));
  if (!file.open(QIODevice::WriteOnly) || file.write(icon) != icon.size() || !file.commit())
    return fail("cannot be written", arguments[2]);
  return EXIT_SUCCESS;
}
