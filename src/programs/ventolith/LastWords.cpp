#include "programs/ventolith/LastWords.h"

#include <cstdio>
#include <cstdlib>

namespace ventolith::programs {

void endProcess(bool isEngineEnded) {
  if (isEngineEnded) std::exit(EXIT_SUCCESS);
  std::fflush(stdout);
  std::_Exit(EXIT_SUCCESS);
}

} // namespace ventolith::programs
