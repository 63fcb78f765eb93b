#include "platform/linux/HwmonTree.h"

#include <sys/inotify.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <ostream>
#include <stdexcept>

namespace ventolith::platform {

namespace {

namespace fs = std::filesystem;
using hardware::SMCParamStruct;

fs::path newFolder() {
  std::string name = (fs::temp_directory_path() / "ventolith-hwmon-XXXXXX").string();
  if (!::mkdtemp(name.data())) throw std::runtime_error("no temporary folder");
  ::chmod(name.c_str(), 0755);
  return name;
}

SMCParamStruct question(SMCParamStruct::Selector selector, const std::string& key) {
  SMCParamStruct input;
  input.key = hardware::packKey(key);
  input.data8 = static_cast<std::uint8_t>(selector);
  return input;
}

} // namespace

HwmonTree::HwmonTree() : folder_(newFolder()) {
  fs::create_directories(root());
}

HwmonTree::HwmonTree(const std::string& name) : folder_(newFolder()) {
  const fs::path source = fs::path(VENTOLITH_DATA) / "hwmon" / name;
  fs::copy(source / "sys", sys(), fs::copy_options::recursive | fs::copy_options::copy_symlinks);
  std::ifstream modes(source / "MODES.txt");
  std::string mode;
  std::string path;
  while (modes >> mode && modes.get() && std::getline(modes, path)) {
    if (::chmod((folder_ / path).c_str(), static_cast<mode_t>(std::stoul(mode, nullptr, 8))) != 0) {
      throw std::runtime_error("no such file: " + path);
    }
  }
}

HwmonTree::~HwmonTree() {
  std::error_code ignored;
  fs::remove_all(folder_, ignored);
}

void HwmonTree::set(const std::string& path, const std::string& text, unsigned mode) const {
  fs::create_directories((root() / path).parent_path());
  std::ofstream(root() / path) << text << '\n';
  ::chmod((root() / path).c_str(), mode);
}

void HwmonTree::remove(const std::string& path) const {
  fs::remove_all(root() / path);
}

std::string HwmonTree::text(const std::string& path) const {
  std::ifstream file(root() / path);
  if (!file) return "(none)";
  const std::string text(std::istreambuf_iterator<char>(file), {});
  return text.substr(0, text.find_last_not_of('\n') + 1);
}

void HwmonTree::addIntelMac(const std::string& hwmon) const {
  set(hwmon + "/name", "applesmc", 0444);
  set(hwmon + "/fan1_input", "2000", 0444);
  set(hwmon + "/fan1_min", "1000");
  set(hwmon + "/fan1_max", "6000", 0444);
  set(hwmon + "/fan1_manual", "0");
  set(hwmon + "/fan1_output", "2000");
}

void HwmonTree::addAppleSilicon(const std::string& hwmon) const {
  set(hwmon + "/name", "macsmc_hwmon", 0444);
  set(hwmon + "/fan1_input", "2000", 0444);
  set(hwmon + "/fan1_min", "1200", 0444);
  set(hwmon + "/fan1_max", "5000", 0444);
  set(hwmon + "/fan1_target", "0");
}

void HwmonTree::addGraphicsCard(const std::string& hwmon) const {
  set(hwmon + "/name", "amdgpu", 0444);
  set(hwmon + "/fan1_input", "530", 0444);
  set(hwmon + "/fan1_min", "400", 0444);
  set(hwmon + "/fan1_max", "3300", 0444);
  set(hwmon + "/fan1_enable", "0");
  set(hwmon + "/fan1_target", "530");
  set(hwmon + "/pwm1_enable", "2");
  set(hwmon + "/pwm1", "41");
}

void HwmonTree::addMainBoard(const std::string& hwmon) const {
  set(hwmon + "/name", "nct6798", 0444);
  set(hwmon + "/fan1_input", "900", 0444);
  set(hwmon + "/fan1_max", "2000", 0444);
  set(hwmon + "/pwm1_enable", "5");
  set(hwmon + "/pwm1", "128");
}

void HwmonTree::addProcessor(const std::string& hwmon) const {
  set(hwmon + "/name", "coretemp", 0444);
  set(hwmon + "/temp1_input", "50000", 0444);
}

std::ostream& operator<<(std::ostream& stream, const Answer& answer) {
  return stream << "returned 0x" << std::hex << static_cast<std::uint32_t>(answer.returned) << ", result "
                << std::dec << answer.result;
}

std::optional<double> Keys::read(const std::string& key) {
  SMCParamStruct info;
  if (call(question(SMCParamStruct::Selector::getKeyInfo, key), info) != applied) return std::nullopt;
  SMCParamStruct value;
  if (call(question(SMCParamStruct::Selector::readKey, key), value) != applied) return std::nullopt;
  return hardware::decodeSMCValue(value.bytes, info.keyInfo.dataSize, info.keyInfo.dataType).numeric();
}

std::string Keys::typeOf(const std::string& key) {
  SMCParamStruct info;
  if (call(question(SMCParamStruct::Selector::getKeyInfo, key), info) != applied) return "";
  return hardware::unpackKey(info.keyInfo.dataType);
}

std::vector<std::string> Keys::all() {
  std::vector<std::string> keys;
  const auto count = static_cast<std::uint32_t>(read("#KEY").value_or(0));
  for (std::uint32_t index = 0; index < count; ++index) {
    SMCParamStruct input;
    input.data8 = static_cast<std::uint8_t>(SMCParamStruct::Selector::getKeyByIndex);
    input.data32 = index;
    SMCParamStruct output;
    if (call(input, output) == applied) keys.push_back(hardware::unpackKey(output.key));
  }
  return keys;
}

Answer Keys::write(const std::string& key, int byte) {
  SMCParamStruct input = question(SMCParamStruct::Selector::writeKey, key);
  input.bytes = hardware::encodeUInt8(static_cast<std::uint8_t>(byte));
  SMCParamStruct output;
  return call(input, output);
}

Answer Keys::writeFloat(const std::string& key, double value) {
  SMCParamStruct input = question(SMCParamStruct::Selector::writeKey, key);
  input.bytes = hardware::encodeFloat(value);
  SMCParamStruct output;
  return call(input, output);
}

Answer Keys::call(const SMCParamStruct& input, SMCParamStruct& output) {
  const hardware::KernReturn returned = client_.call(connection_, input, output);
  return {returned, output.result};
}

FileWatch::FileWatch(const fs::path& folder) : descriptor_(::inotify_init1(IN_NONBLOCK | IN_CLOEXEC)) {
  // With the openings between them, two writes of one file are told apart.
  if (::inotify_add_watch(descriptor_, folder.c_str(), IN_OPEN | IN_ACCESS | IN_CLOSE_WRITE) < 0) {
    throw std::runtime_error("cannot watch " + folder.string());
  }
}

FileWatch::~FileWatch() {
  ::close(descriptor_);
}

std::vector<std::string> FileWatch::written() {
  return names(IN_CLOSE_WRITE);
}

std::vector<std::string> FileWatch::read() {
  return names(IN_ACCESS);
}

std::vector<std::string> FileWatch::opened() {
  return names(IN_OPEN);
}

std::vector<std::string> FileWatch::names(unsigned wanted) {
  std::vector<std::string> names;
  alignas(inotify_event) std::array<char, 65536> buffer{};
  const ssize_t length = ::read(descriptor_, buffer.data(), buffer.size());
  for (ssize_t place = 0; place < length;) {
    inotify_event event{};
    std::memcpy(&event, buffer.data() + place, sizeof event);
    const char* name = buffer.data() + place + sizeof event;
    if ((event.mask & wanted) != 0 && event.len > 0) names.emplace_back(name);
    place += static_cast<ssize_t>(sizeof event + event.len);
  }
  return names;
}

} // namespace ventolith::platform
