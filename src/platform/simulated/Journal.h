// What a simulated machine tells about the calls of its driver.
#pragma once

#include "hardware/SMCUserClient.h"

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace ventolith::simulated {

/// One call of the driver.
struct JournalEntry {
  enum class Operation { info, read, write, index, unknown };

  double seconds = 0;             // Since the machine started.
  hardware::IOConnect client = 0; // The connection.
  Operation operation = Operation::unknown;
  std::string key;                 // For index the key that was found, empty if none was.
  std::vector<std::uint8_t> bytes; // What was written, or what a read answered; empty for all else.
  std::int32_t result = 0;         // The SMC's, or the driver's if the call did not get to the SMC.
  bool isDriverFailure = false;

  bool operator==(const JournalEntry&) const = default;
};

using JournalSink = std::function<void(const JournalEntry&)>;

/// The entry as one line of JSON, without the end of the line:
/// {"t":1.5,"client":1,"op":"write","key":"F0Md","bytes":"01","result":0}, and "driver":true at the end
/// where the driver failed.
[[nodiscard]] std::string journalLine(const JournalEntry& entry);

} // namespace ventolith::simulated
