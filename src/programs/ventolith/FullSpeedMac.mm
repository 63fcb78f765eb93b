#include "programs/ventolith/FullSpeed.h"

#import <Foundation/Foundation.h>

namespace ventolith::programs {

void keepFullSpeed() {
  @autoreleasepool {
    // What the user waits for is exempt from App Nap. It ends with the process.
    static id const activity =
        [NSProcessInfo.processInfo beginActivityWithOptions:NSActivityUserInitiatedAllowingIdleSystemSleep
                                                     reason:@"Fans are being watched"];
    static_cast<void>(activity);
  }
}

} // namespace ventolith::programs
