// The application's process.
#include "app/selftest/SelfTest.h"
#include "platform/system/SystemClock.h"
#include "programs/common/MachineSelection.h"

#include <boost/asio/io_context.hpp>

#include <cstdio>
#include <cstdlib>
#include <iostream>

namespace {

using namespace ventolith;

bool selfTestPasses() {
  boost::asio::io_context context(1);
  platform::SystemClock clock(context.get_executor());
  auto machine = programs::selectMachine(programs::processEnvironment, clock);
  app::SelfTestOutput output(std::cout, std::cerr);
  bool passed = false;
  boost::asio::co_spawn(context, app::runSelfTest(context.get_executor(), clock, machine, output),
                        [&](const std::exception_ptr& escaped, bool result) {
                          if (escaped) std::rethrow_exception(escaped);
                          passed = result;
                        });
  context.run();
  return passed;
}

} // namespace

int main(int argumentCount, char** arguments) {
  try {
    if (app::wantsSelfTest({arguments, arguments + argumentCount}))
      return selfTestPasses() ? EXIT_SUCCESS : EXIT_FAILURE;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "ventolith: %s\n", error.what());
    return EXIT_FAILURE;
  }
  std::fputs("ventolith: this build has no window; --selftest looks at the machine, ventolithctl controls "
             "its fans\n",
             stderr);
  return EXIT_FAILURE;
}
