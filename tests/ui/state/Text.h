// Texts of a screen in failure messages and expectations.
#pragma once

#include <QString>

#include <ostream>
#include <string>

namespace ventolith::support {

[[nodiscard]] inline std::string utf8(const QString& text) {
  return text.toStdString();
}

} // namespace ventolith::support

QT_BEGIN_NAMESPACE
inline void PrintTo(const QString& text, std::ostream* out) {
  *out << '"' << text.toStdString() << '"';
}
QT_END_NAMESPACE
