#include "programs/ventolithctl/SystemAdvice.h"

namespace ventolith::ctl {

std::string_view approvalAdvice() {
  return "It is allowed in System Settings, under Login Items: \"ventolithctl helper install\" leads there.";
}

std::string_view installationAdvice() {
  return "Ventolith.app brings it along: what has to be called is the ventolithctl inside, by its own path.";
}

} // namespace ventolith::ctl
