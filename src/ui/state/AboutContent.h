// Who the application is, and the notices of the software that it includes.
#pragma once

#include "app/platform-kit/BundleInfo.h"

#include <QString>

#include <optional>

namespace ventolith::ui {

/// The bundle's own name, or else "Ventolith".
[[nodiscard]] QString applicationName(const app::BundleInfo& bundle);

/// "Version 1.0.3 (6)", or that there is none.
[[nodiscard]] QString versionText(const app::BundleInfo& bundle);

/// The text of THIRD_PARTY_NOTICES.md among the resources in `folder`, as it stands. None when there is no
/// such file, and when it cannot be read as UTF-8.
[[nodiscard]] std::optional<QString> thirdPartyNotices(const QString& folder);

struct AboutTexts {
  QString support;
  QString noticesHeading;
  QString noNotices; // In place of notices that cannot be read.
};
[[nodiscard]] AboutTexts aboutTexts();

} // namespace ventolith::ui
