#include "programs/ventolith/window/OpenedAgain.h"

namespace ventolith::programs {

std::unique_ptr<QObject> whenOpenedAgain(std::function<void()>) {
  return nullptr;
}

} // namespace ventolith::programs
