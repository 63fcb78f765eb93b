// ventolith-preflight: says whether a build's settings are fit for a release.
#include "programs/preflight/Preflight.h"

#include <iostream>

int main(int argumentCount, char** arguments) {
  const int status =
      ventolith::programs::runPreflight({arguments + 1, arguments + argumentCount}, std::cout, std::cerr);
  constexpr int notToldStatus = 2;
  return std::cout.flush() ? status : notToldStatus;
}
