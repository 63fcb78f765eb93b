#include "platform/linux/desktop/InstalledBundle.h"

#include "app/platform-kit/PropertyList.h"

#include <fmt/format.h>

namespace ventolith::platform {

namespace fs = std::filesystem;

namespace {

app::MapBundleInfo::Values valuesOf(runtime::FileLayer& files, const fs::path& file,
                                    std::optional<std::string>& complaint) {
  auto values = app::readPropertyList(files, file);
  if (values) return std::move(*values);
  complaint = fmt::format("{}: {}; this build knows neither its version nor its updates", file.string(),
                          values.error().description);
  return {};
}

} // namespace

InstalledBundle::InstalledBundle(runtime::FileLayer& files, const fs::path& propertyList)
    : values_(valuesOf(files, propertyList, complaint_)) {}

InstalledBundle InstalledBundle::ofProgram(runtime::FileLayer& files) {
  return {files, propertyListBesideProgram()};
}

fs::path InstalledBundle::resourceFolder() {
  std::error_code error;
  const fs::path program = fs::read_symlink("/proc/self/exe", error);
  if (error) return {};
  return (program.parent_path() / "../share/ventolith").lexically_normal();
}

fs::path InstalledBundle::propertyListBesideProgram() {
  const fs::path folder = resourceFolder();
  return folder.empty() ? fs::path() : folder / "Info.plist";
}

std::optional<std::string> InstalledBundle::string(std::string_view key) const {
  return values_.string(key);
}

std::optional<bool> InstalledBundle::boolean(std::string_view key) const {
  return values_.boolean(key);
}

} // namespace ventolith::platform
