#include "platform/simulated/Journal.h"

#include "core/JSON.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

namespace ventolith::simulated {

namespace {

const char* operationName(JournalEntry::Operation operation) {
  switch (operation) {
  case JournalEntry::Operation::info: return "info";
  case JournalEntry::Operation::read: return "read";
  case JournalEntry::Operation::write: return "write";
  case JournalEntry::Operation::index: return "index";
  case JournalEntry::Operation::unknown: break;
  }
  return "unknown";
}

} // namespace

std::string journalLine(const JournalEntry& entry) {
  core::JSON line;
  line["t"] = entry.seconds;
  line["client"] = entry.client;
  line["op"] = operationName(entry.operation);
  line["key"] = entry.key;
  line["bytes"] = fmt::format("{:02x}", fmt::join(entry.bytes, ""));
  line["result"] = entry.result;
  if (entry.isDriverFailure) line["driver"] = true;
  return core::writeJSON(line);
}

} // namespace ventolith::simulated
