// `ventolith-helper`: the privileged process that owns the fans.
#include "helper/link/HelperBuildVersion.h"
#include "programs/ventolith-helper/HelperProgram.h"

int main(int argumentCount, char** arguments) {
  return ventolith::programs::runHelper({arguments + 1, arguments + argumentCount},
                                        ventolith::helper::HelperBuildVersion::identifier);
}
