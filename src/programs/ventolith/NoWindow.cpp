// A build without the window.
#include "programs/ventolith/WindowRun.h"

#include <cstdio>
#include <cstdlib>

namespace ventolith::programs {

void runWindow(int, char**, const Environment&) {
  std::fputs(
      "ventolith: this build has no window; --headless runs without one, --selftest looks at the machine\n",
      stderr);
  std::exit(EXIT_FAILURE);
}

} // namespace ventolith::programs
