// The information dictionary of the build that is running: the property list installed beside it.
#pragma once

#include "app/platform-kit/BundleInfo.h"
#include "runtime/Files.h"

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace ventolith::platform {

/// Read once, when it is made. A file that is missing or damaged leaves it empty: the application starts
/// without a version and without updates, and has a sentence to say why.
class InstalledBundle final : public app::BundleInfo {
public:
  InstalledBundle(runtime::FileLayer& files, const std::filesystem::path& propertyList);

  /// Of the program that is running.
  [[nodiscard]] static InstalledBundle ofProgram(runtime::FileLayer& files);

  /// Where the files are that the application shows: ../share/ventolith from the folder of the program that
  /// is running, in a build and installed.
  [[nodiscard]] static std::filesystem::path resourceFolder();
  /// Info.plist in there.
  [[nodiscard]] static std::filesystem::path propertyListBesideProgram();

  /// For standard error; none when all is well.
  [[nodiscard]] const std::optional<std::string>& complaint() const { return complaint_; }

  [[nodiscard]] std::optional<std::string> string(std::string_view key) const override;
  [[nodiscard]] std::optional<bool> boolean(std::string_view key) const override;

private:
  std::optional<std::string> complaint_;
  app::MapBundleInfo values_;
};

} // namespace ventolith::platform
