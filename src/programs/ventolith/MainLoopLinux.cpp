// Everything comes through descriptors, which any thread's event loop waits for.
#include "programs/ventolith/MainLoop.h"

namespace ventolith::programs {

void runBesideMainLoop(const std::function<void()>& work) {
  work();
}

} // namespace ventolith::programs
