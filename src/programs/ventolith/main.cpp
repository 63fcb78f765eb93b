// The application's process.
#include "app/selftest/SelfTest.h"
#include "platform/system/SystemClock.h"
#include "programs/common/MachineSelection.h"
#include "programs/ventolith/HeadlessRun.h"

#include <boost/asio/io_context.hpp>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <string_view>
#include <vector>

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

bool has(const std::vector<std::string_view>& words, std::string_view word) {
  return std::ranges::find(words, word) != words.end();
}

} // namespace

int main(int argumentCount, char** arguments) {
  const std::vector<std::string_view> words(arguments, arguments + argumentCount);
  try {
    if (app::wantsSelfTest(words)) return selfTestPasses() ? EXIT_SUCCESS : EXIT_FAILURE;
    if (has(words, "--headless")) {
      programs::runHeadless(programs::processEnvironment, has(words, "--engine-thread")
                                                              ? programs::EngineRuns::onItsOwnThread
                                                              : programs::EngineRuns::onTheMainThread);
    }
  } catch (const std::exception& error) {
    std::fprintf(stderr, "ventolith: %s\n", error.what());
    return EXIT_FAILURE;
  }
  std::fputs(
      "ventolith: this build has no window; --headless runs without one, --selftest looks at the machine\n",
      stderr);
  return EXIT_FAILURE;
}
