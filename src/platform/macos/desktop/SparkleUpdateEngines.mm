#include "platform/macos/desktop/SparkleUpdateEngine.h"
#include "platform/macos/desktop/UpdateEngines.h"

#import <AppKit/AppKit.h>

#include <utility>

namespace ventolith::platform {

app::UpdateEngineFactory systemUpdateEngines(UpdateEngineSettings) {
  return [](const app::UpdateFeedConfiguration&,
            std::shared_ptr<app::UpdateEngineDelegate> delegate) -> std::unique_ptr<app::UpdateEngine> {
    // Sparkle asks and tells in windows, which nobody could answer without AppKit's event loop.
    if (NSApp == nil) return nullptr;
    return std::make_unique<SparkleUpdateEngine>(std::move(delegate));
  };
}

} // namespace ventolith::platform
