// The application's process.
#include "app/selftest/SelfTest.h"
#include "platform/system/SystemClock.h"
#include "programs/common/MachineSelection.h"
#include "programs/ventolith/HeadlessRun.h"
#include "programs/ventolith/WindowRun.h"

#include <boost/asio/io_context.hpp>

#include <fcntl.h>
#include <unistd.h>

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

/// A descriptor that is opened later must not take the place of a stream that is closed.
void openClosedStreams() {
  for (int stream = STDIN_FILENO; stream <= STDERR_FILENO; ++stream) {
    if (::fcntl(stream, F_GETFD) < 0) static_cast<void>(::open("/dev/null", O_RDWR));
  }
}

} // namespace

int main(int argumentCount, char** arguments) {
  openClosedStreams();
  const std::vector<std::string_view> words(arguments, arguments + argumentCount);
  try {
    if (app::wantsSelfTest(words)) return selfTestPasses() ? EXIT_SUCCESS : EXIT_FAILURE;
    if (has(words, "--headless")) {
      programs::runHeadless(programs::processEnvironment, has(words, "--engine-thread")
                                                              ? programs::EngineRuns::onItsOwnThread
                                                              : programs::EngineRuns::onTheModelsThread);
    }
    programs::runWindow(argumentCount, arguments, programs::processEnvironment);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "ventolith: %s\n", error.what());
    return EXIT_FAILURE;
  }
}
