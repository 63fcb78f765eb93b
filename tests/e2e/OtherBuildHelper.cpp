// The helper as an older build had it: the same in everything but the build that it tells.
#include "programs/ventolith-helper/HelperProgram.h"

int main(int argumentCount, char** arguments) {
  return ventolith::programs::runHelper({arguments + 1, arguments + argumentCount}, "1.0.2+5");
}
