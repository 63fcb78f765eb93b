// A pool for the objects that the system's functions leave behind.
#pragma once

// Of the Objective-C runtime, whose headers leave them to compilers.
extern "C" {
void* objc_autoreleasePoolPush();
void objc_autoreleasePoolPop(void* pool);
}

namespace ventolith::platform {

/// Stands around calls of C functions that may be written in Objective-C inside. A thread that the system has
/// not made has no pool, and what is autoreleased there would be kept until the thread ends. Pools of one
/// thread go in the reverse order of their making.
class AutoreleasePool {
public:
  AutoreleasePool() : pool_(::objc_autoreleasePoolPush()) {}
  AutoreleasePool(const AutoreleasePool&) = delete;
  AutoreleasePool& operator=(const AutoreleasePool&) = delete;
  ~AutoreleasePool() { ::objc_autoreleasePoolPop(pool_); }

private:
  void* pool_;
};

} // namespace ventolith::platform
