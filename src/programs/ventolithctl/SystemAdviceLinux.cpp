#include "programs/ventolithctl/SystemAdvice.h"

namespace ventolith::ctl {

std::string_view approvalAdvice() {
  return "An administrator has to allow it: \"ventolithctl helper install\" asks for that.";
}

std::string_view installationAdvice() {
  return "Ventolith's package has to be installed first, and the system's service manager to run.";
}

} // namespace ventolith::ctl
