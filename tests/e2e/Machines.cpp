#include "e2e/Machines.h"

#include <sys/stat.h>

#include <algorithm>
#include <csignal>
#include <fstream>
#include <stdexcept>

namespace ventolith::e2e {

namespace {

namespace fs = std::filesystem;
using nlohmann::json;

const fs::path data = VENTOLITH_DATA;

json parsed(const std::string& text, const std::string& what) {
  json document = json::parse(text, nullptr, false);
  if (document.is_discarded()) throw std::runtime_error(what + " is no JSON: " + text);
  return document;
}

JournalLine journalLine(const std::string& text) {
  const json line = parsed(text, "a line of the journal");
  return {
      .client = line.at("client").get<int>(),
      .operation = line.at("op").get<std::string>(),
      .key = line.at("key").get<std::string>(),
      .bytes = line.at("bytes").get<std::string>(),
      .result = line.at("result").get<int>(),
      .isDriverFailure = line.value("driver", false),
  };
}

/// Git does not keep the modes of files.
void applyModes(const fs::path& list, const fs::path& folder) {
  std::ifstream modes(list);
  std::string mode;
  std::string path;
  while (modes >> mode && modes.get() && std::getline(modes, path)) {
    const auto bits = static_cast<mode_t>(std::stoul(mode, nullptr, 8));
    if (::chmod((folder / path).c_str(), bits) != 0) throw std::runtime_error("no such file: " + path);
  }
}

} // namespace

HwmonTree::HwmonTree() {
  fs::create_directories(root());
}

HwmonTree::HwmonTree(const std::string& name) {
  const fs::path source = data / "hwmon" / name;
  fs::copy(source / "sys", sys(), fs::copy_options::recursive | fs::copy_options::copy_symlinks);
  applyModes(source / "MODES.txt", folder_.path());
}

Environment HwmonTree::environment() const {
  return {{"VENTOLITH_HWMON_ROOT", root().string()}, {"VENTOLITH_STATE_DIR", stateFolder().string()}};
}

std::string HwmonTree::text(const std::string& path) const {
  if (!fs::exists(root() / path)) throw std::runtime_error("no such file: " + path);
  const std::string text = readText(root() / path);
  return text.substr(0, text.find_last_not_of('\n') + 1);
}

void HwmonTree::set(const std::string& path, const std::string& text) const {
  fs::create_directories((root() / path).parent_path());
  std::ofstream(root() / path) << text << '\n';
}

std::map<std::string, std::string> HwmonTree::contents() const {
  std::map<std::string, std::string> contents;
  for (const auto& entry : fs::recursive_directory_iterator(sys())) {
    if (entry.is_regular_file()) contents[entry.path().string()] = readText(entry.path());
  }
  return contents;
}

std::vector<std::string> treeNames() {
  std::vector<std::string> names;
  for (const auto& entry : fs::directory_iterator(data / "hwmon")) {
    if (entry.is_directory()) names.push_back(entry.path().filename().string());
  }
  std::ranges::sort(names);
  return names;
}

json expectedSnapshot(const std::string& treeName) {
  return parsed(readText(data / "hwmon" / treeName / "expected.json"), treeName);
}

Simulator::Simulator(const std::string& machine)
    : program_("ventolith-simulator",
               {"--machine", machine, "--socket", socket(), "--journal", journalFile().string()}, {}) {
  waitUntilItServes();
}

Simulator::Simulator(const json& description)
    : program_("ventolith-simulator",
               {"--machine", folder_.write("machine.json", description.dump()).string(), "--socket", socket(),
                "--journal", journalFile().string()},
               {}) {
  waitUntilItServes();
}

void Simulator::waitUntilItServes() {
  waitUntil("a simulator that serves", [this] {
    if (!program_.isRunning()) throw std::runtime_error("the simulator ended: " + program_.err());
    return !program_.outLines().empty();
  });
}

Environment Simulator::environment() const {
  return {{"VENTOLITH_MACHINE", "socket:" + socket()}};
}

void Simulator::send(const std::string& line) const {
  const Ended sent = run("ventolith-simulator", {"--socket", socket(), "--send", line});
  if (sent.status != 0) throw std::runtime_error(line + ": " + sent.err);
}

void Simulator::kill() {
  program_.signal(SIGKILL);
  program_.wait();
}

std::vector<JournalLine> Simulator::journal() const {
  std::vector<JournalLine> journal;
  for (const std::string& line : readLines(journalFile()))
    journal.push_back(journalLine(line));
  return journal;
}

std::optional<std::string> Simulator::lastWrite(const std::string& key) const {
  std::optional<std::string> bytes;
  for (const JournalLine& line : journal()) {
    const bool isTaken = line.result == 0 && !line.isDriverFailure;
    if (line.operation == "write" && line.key == key && isTaken) bytes = line.bytes;
  }
  return bytes;
}

json Simulator::snapshot() const {
  return snapshotOf(environment());
}

std::vector<int> Simulator::fanModes() const {
  const json shown = snapshot();
  std::vector<int> modes;
  for (const json& fan : shown.at("fans"))
    modes.push_back(fan.value("mode", -1));
  return modes;
}

json quickMacBookPro() {
  json machine = parsed(readText(data / "machines" / "macbook-pro.json"), "the machine");
  machine["latch"]["delay"] = 0;
  return machine;
}

json snapshotOf(const Environment& machine) {
  const Ended ended = run("ventolithctl", {"snapshot", "--json"}, machine);
  if (ended.status != 0) throw std::runtime_error("no snapshot: " + ended.err);
  return parsed(ended.out, "the snapshot");
}

} // namespace ventolith::e2e
