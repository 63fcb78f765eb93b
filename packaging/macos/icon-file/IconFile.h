// The icon of an application for macOS: one file with pictures of several sizes.
#pragma once

#include <QByteArray>

class QSvgRenderer;

namespace ventolith::packaging {

/// The bytes of an .icns file, with `drawing` in every size from 32 to 1024 pixels that macOS asks for. The
/// smallest icon without doubled pixels, 16 pixels wide, it scales by itself. Empty if a picture cannot be
/// made.
[[nodiscard]] QByteArray iconFileOf(QSvgRenderer& drawing);

} // namespace ventolith::packaging
