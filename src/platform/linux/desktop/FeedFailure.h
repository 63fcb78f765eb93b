// What is said about a check of the update feed that failed: one sentence for the user each.
#pragma once

#include "app/UpdateEngine.h"
#include "platform/linux/desktop/Appcast.h"
#include "platform/linux/desktop/Download.h"

namespace ventolith::platform {

[[nodiscard]] app::PlatformError platformError(const DownloadFailure& failure);
[[nodiscard]] app::PlatformError platformError(const AppcastError& error);
[[nodiscard]] app::PlatformError invalidSignatureError();

} // namespace ventolith::platform
