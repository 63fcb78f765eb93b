#include "platform/macos/UserFolders.h"

#import <Foundation/Foundation.h>

namespace ventolith::platform {

std::filesystem::path userConfigurationFolder() {
  @autoreleasepool {
    NSFileManager* const files = NSFileManager.defaultManager;
    NSURL* const support =
        [files URLsForDirectory:NSApplicationSupportDirectory inDomains:NSUserDomainMask].firstObject;
    NSURL* const folder = support != nil ? support : files.temporaryDirectory;
    return folder.fileSystemRepresentation;
  }
}

} // namespace ventolith::platform
