#include "platform/macos/service/SideQueue.h"

#import <Foundation/Foundation.h>

namespace ventolith::platform {

struct SideQueue::Queue {
  dispatch_queue_t serial = dispatch_queue_create("com.ventolith.side", DISPATCH_QUEUE_SERIAL);
};

SideQueue::SideQueue(runtime::Executor executor)
    : executor_(std::move(executor)),
      doorway_(std::make_shared<Doorway>(executor_)),
      queue_(std::make_unique<Queue>()) {}

SideQueue::~SideQueue() {
  doorway_->shut();
}

void SideQueue::post(std::function<void()> work) {
  dispatch_async(queue_->serial, ^{
    @autoreleasepool {
      work();
    }
  });
}

} // namespace ventolith::platform
