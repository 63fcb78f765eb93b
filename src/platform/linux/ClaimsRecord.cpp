#include "platform/linux/ClaimsRecord.h"

#include "core/JSON.h"
#include "runtime/Files.h"

#include <fmt/format.h>

#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>

namespace ventolith::platform {

namespace {

namespace fs = std::filesystem;
using core::JSON;
using core::JSONReader;

constexpr std::size_t longestFile = std::size_t{64} * 1024;
/// Beyond what any driver's file takes; a record that says more was not written here.
constexpr std::int64_t largestValue = 1'000'000;

/// Nobody need be able to hear it.
void complain(const std::string& what) {
  const std::string line = fmt::format("[Hwmon] {}\n", what);
  std::fputs(line.c_str(), stderr);
}

JSON toJSON(const std::optional<std::int64_t>& value) {
  return value ? JSON(*value) : JSON(nullptr);
}

JSON toJSON(const ClaimRecord& record) {
  const DeviceIdentity& device = record.fan.device;
  return {{"root", record.fan.root},
          {"driver", device.driver},
          {"device", device.path},
          {"ordinal", device.ordinal},
          {"fan", record.fan.fan},
          {"kind", record.kind},
          {"enable", toJSON(record.former.enable)},
          {"speed", toJSON(record.former.speed)}};
}

std::int64_t valueFromJSON(const JSONReader& reader) {
  const std::int64_t value = reader.asInteger();
  if (value >= 0 && value <= largestValue) return value;
  throw core::DecodeError(core::DecodeError::Kind::dataCorrupted, "", "a value out of range");
}

std::optional<std::int64_t> optionalFromJSON(const JSONReader& reader, std::string_view key) {
  const auto member = reader.find(key);
  if (!member) return std::nullopt;
  return valueFromJSON(*member);
}

ClaimRecord recordFromJSON(const JSONReader& reader) {
  const DeviceIdentity device{reader.at("driver").asString(), reader.at("device").asString(),
                              static_cast<int>(valueFromJSON(reader.at("ordinal")))};
  return {{reader.at("root").asString(), device, static_cast<int>(valueFromJSON(reader.at("fan")))},
          reader.at("kind").asString(),
          {optionalFromJSON(reader, "enable"), optionalFromJSON(reader, "speed")}};
}

std::vector<ClaimRecord> recordsFromText(const std::string& text) {
  const JSON document = core::parseJSON(text, {.bytes = longestFile});
  const JSONReader reader(document);
  std::vector<ClaimRecord> records;
  for (std::size_t place = 0; place < reader.size(); ++place) {
    records.push_back(recordFromJSON(reader.element(place)));
  }
  return records;
}

/// Whether `folder` is there and writable, or could be made.
bool isUsable(const fs::path& folder) {
  std::error_code error;
  if (fs::is_directory(folder, error)) return ::access(folder.c_str(), W_OK) == 0;
  if (fs::exists(folder, error)) return false;
  return ::access(folder.parent_path().c_str(), W_OK) == 0;
}

} // namespace

std::optional<fs::path> stateFolder() {
  if (const char* folder = std::getenv("VENTOLITH_STATE_DIR"); folder && *folder) return fs::path(folder);
  if (const fs::path folder = "/run/ventolith"; isUsable(folder)) return folder;
  if (const char* runtime = std::getenv("XDG_RUNTIME_DIR"); runtime && *runtime) {
    if (const fs::path folder = fs::path(runtime) / "ventolith"; isUsable(folder)) return folder;
  }
  return std::nullopt;
}

ClaimsRecord::ClaimsRecord(std::optional<fs::path> folder) : folder_(std::move(folder)) {
  load();
}

std::optional<FormerControl> ClaimsRecord::find(const FanIdentity& fan, const std::string& kind) const {
  const auto found = std::ranges::find(records_, fan, &ClaimRecord::fan);
  if (found == records_.end() || found->kind != kind) return std::nullopt;
  return found->former;
}

std::vector<FanIdentity> ClaimsRecord::ofRoot(const std::string& root) const {
  std::vector<FanIdentity> fans;
  for (const ClaimRecord& record : records_) {
    if (record.fan.root == root) fans.push_back(record.fan);
  }
  return fans;
}

void ClaimsRecord::put(ClaimRecord record) {
  std::erase_if(records_, [&](const ClaimRecord& one) { return one.fan == record.fan; });
  records_.push_back(std::move(record));
  save();
}

void ClaimsRecord::keep(ClaimRecord record) {
  if (!folder_) return;
  std::error_code error;
  const bool isThere = fs::exists(*folder_ / "claims", error);
  if (std::ranges::find(records_, record) == records_.end()) return put(std::move(record));
  if (!isThere) save();
}

void ClaimsRecord::remove(const FanIdentity& fan) {
  const auto removed = std::erase_if(records_, [&](const ClaimRecord& one) { return one.fan == fan; });
  if (removed > 0) save();
}

void ClaimsRecord::load() {
  if (!folder_) return;
  const fs::path path = *folder_ / "claims";
  const auto text = runtime::SystemFiles().read(path, longestFile);
  if (!text) {
    if (text.error() != std::errc::no_such_file_or_directory)
      complain(fmt::format("{} is ignored: {}", path.string(), text.error().message()));
    return;
  }
  try {
    records_ = recordsFromText(*text);
  } catch (const std::exception& failure) {
    complain(fmt::format("{} is ignored: {}", path.string(), failure.what()));
  }
}

void ClaimsRecord::save() {
  if (!folder_) return;
  const fs::path path = *folder_ / "claims";
  std::error_code error;
  if (records_.empty()) {
    fs::remove(path, error);
    if (error && error != std::errc::not_a_directory)
      complain(fmt::format("{} could not be removed: {}", path.string(), error.message()));
    return;
  }
  fs::create_directories(*folder_, error);
  JSON document = JSON::array();
  for (const ClaimRecord& record : records_)
    document.push_back(toJSON(record));
  // A driver's name may be any bytes.
  const std::string text = document.dump(1, ' ', false, JSON::error_handler_t::replace) + "\n";
  runtime::SystemFiles files;
  error = runtime::replaceFile(files, path, text, runtime::ordinaryFile);
  if (error && !hasFailed_)
    complain(fmt::format("{} could not be written: {}", path.string(), error.message()));
  hasFailed_ = static_cast<bool>(error);
}

} // namespace ventolith::platform
