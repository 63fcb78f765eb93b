#include "programs/preflight/Preflight.h"

#include "app/platform-kit/PropertyList.h"
#include "app/platform-kit/UpdatePreflight.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include <algorithm>
#include <ostream>

namespace ventolith::programs {

namespace {

constexpr int readyStatus = 0;
constexpr int notReadyStatus = 1;
constexpr int notCheckedStatus = 2;

std::vector<app::UpdateConfigurationError> problemsOf(const app::BundleInfo& bundle) {
  return app::UpdatePreflight::validate(bundle.string("CFBundleShortVersionString"),
                                        bundle.string("CFBundleVersion"),
                                        app::UpdateFeedSettings::ofBundle(bundle));
}

int check(const std::string& file, std::ostream& out, std::ostream& err) {
  runtime::SystemFiles files;
  const auto values = app::readPropertyList(files, file);
  if (!values) {
    err << fmt::format("ventolith-preflight: {}: {}\n", file, values.error().description);
    return notCheckedStatus;
  }
  const auto problems = problemsOf(app::MapBundleInfo(*values));
  for (const auto& problem : problems)
    out << problem.description() << '\n';
  if (!problems.empty()) return notReadyStatus;
  out << fmt::format("{}: ready for release\n", file);
  return readyStatus;
}

} // namespace

int runPreflight(std::vector<std::string> arguments, std::ostream& out, std::ostream& err) {
  CLI::App app("Checks the settings of a build, its version and update feed, before it is given away.",
               "ventolith-preflight");
  app.footer("Exit status: 0 the build is ready, 1 something is wrong with it, 2 it could not be checked");
  std::string file;
  app.add_option("PLIST", file, "The build's Info.plist")->required();
  try {
    std::reverse(arguments.begin(), arguments.end()); // The parser takes them from the back.
    app.parse(std::move(arguments));
  } catch (const CLI::ParseError& error) {
    return app.exit(error, out, err) == 0 ? readyStatus : notCheckedStatus;
  }
  return check(file, out, err);
}

} // namespace ventolith::programs
