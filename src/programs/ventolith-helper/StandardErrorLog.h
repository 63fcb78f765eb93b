// The helper's log on standard error.
#pragma once

#include "helper/daemon/HelperLog.h"
#include "programs/common/MachineSelection.h"

namespace ventolith::programs {

/// Whether the service manager has led standard error to the journal. The variable that tells so is
/// inherited; it names the file that it is about.
[[nodiscard]] bool isStandardErrorTheJournal(const Environment& environment);

/// Each line under the program's name; in a journal with its priority, which the journal takes away again. A
/// line that cannot be written at once is lost: nobody who does not read it keeps the engine from its work.
class StandardErrorLog final : public helper::HelperLog {
public:
  explicit StandardErrorLog(bool isJournal) : isJournal_(isJournal) {}

  void note(const std::string& line) override { write("<6>", line); }
  void warn(const std::string& line) override { write("<4>", line); }

private:
  void write(const char* priority, const std::string& line) const;

  bool isJournal_;
};

} // namespace ventolith::programs
