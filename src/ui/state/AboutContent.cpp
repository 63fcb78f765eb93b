#include "ui/state/AboutContent.h"

#include "app/platform-kit/AppReleaseMetadata.h"
#include "ui/state/Numbers.h"

#include <QByteArray>
#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStringDecoder>

namespace ventolith::ui {

namespace {

class About {
  Q_DECLARE_TR_FUNCTIONS(About)
};

} // namespace

QString applicationName(const app::BundleInfo& bundle) {
  return utf8Text(bundle.string("CFBundleName").value_or("Ventolith"));
}

QString versionText(const app::BundleInfo& bundle) {
  const auto release = app::AppReleaseMetadata::ofBundle(bundle);
  if (!release) return About::tr("Version unavailable");
  return About::tr("Version %1 (%2)")
      .arg(utf8Text(release->marketingVersion()), utf8Text(release->buildNumber()));
}

std::optional<QString> thirdPartyNotices(const QString& folder) {
  const QString path = QDir(folder).filePath(QStringLiteral("THIRD_PARTY_NOTICES.md"));
  QFile file(path);
  if (!QFileInfo(path).isFile() || !file.open(QIODevice::ReadOnly)) return std::nullopt;
  const QByteArray bytes = file.readAll();
  if (file.error() != QFileDevice::NoError) return std::nullopt;
  QStringDecoder decode(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless); // A torn end is an error.
  QString notices = decode(bytes);
  if (decode.hasError()) return std::nullopt;
  return notices;
}

AboutTexts aboutTexts() {
  return {.support = About::tr("Support"),
          .noticesHeading = About::tr("Third-Party Notices"),
          .noNotices = About::tr("Third-party notices are unavailable in this build.")};
}

} // namespace ventolith::ui
