// Plans and traces as files that the user names.
#pragma once

#include "core/FanControlPlan.h"
#include "programs/ventolithctl/Context.h"

#include <fstream>
#include <string>

namespace ventolith::ctl {

/// Fails with InputError, which names the file and the failing path in it.
[[nodiscard]] core::FanControlPlan readPlanFile(const std::string& file);

[[nodiscard]] bool leavesEveryFanToTheFirmware(const core::FanControlPlan& plan);

/// A file to be read, or standard input for "-".
class InputFile {
public:
  /// Fails with InputError. `context` outlives it.
  InputFile(const std::string& file, Context& context);

  [[nodiscard]] std::istream& stream() { return isStandardInput_ ? in_ : file_; }

private:
  std::istream& in_;
  std::ifstream file_;
  bool isStandardInput_;
};

} // namespace ventolith::ctl
