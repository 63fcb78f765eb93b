#include "programs/ventolithctl/PlanFile.h"

#include <fmt/format.h>

#include <algorithm>
#include <cerrno>
#include <system_error>

namespace ventolith::ctl {

namespace {

[[noreturn]] void failUnreadable(const std::string& file) {
  throw InputError(fmt::format("{}: {}", file, std::generic_category().message(errno)));
}

/// At most one byte more than a plan may have, which is enough for its decoder to refuse it.
std::string readBounded(const std::string& file) {
  std::ifstream in(file, std::ios::binary);
  if (!in) failUnreadable(file);
  std::string text(core::JSONBounds().bytes + 1, '\0');
  in.read(text.data(), static_cast<std::streamsize>(text.size()));
  if (in.bad() || (in.fail() && !in.eof())) failUnreadable(file);
  text.resize(static_cast<std::size_t>(in.gcount()));
  return text;
}

} // namespace

core::FanControlPlan readPlanFile(const std::string& file) {
  const std::string text = readBounded(file);
  try {
    return core::decodeFanControlPlan(text);
  } catch (const core::DecodeError& error) {
    throw InputError(fmt::format("{}: {}", file, error.what()));
  }
}

bool leavesEveryFanToTheFirmware(const core::FanControlPlan& plan) {
  return std::all_of(plan.fans.begin(), plan.fans.end(),
                     [](const core::FanPlan& entry) { return entry.mode.isAutomatic(); });
}

InputFile::InputFile(const std::string& file, Context& context)
    : in_(context.in), isStandardInput_(file == "-") {
  if (isStandardInput_) return;
  file_.open(file, std::ios::binary);
  if (!file_) failUnreadable(file);
}

} // namespace ventolith::ctl
