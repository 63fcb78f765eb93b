// The information dictionary of the build that is running: its bundle's.
#pragma once

#include "app/platform-kit/BundleInfo.h"
#include "runtime/Files.h"

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace ventolith::platform {

/// Read once, when it is made. A program that runs outside of a bundle, as it does where it was built, has
/// the property list that lies beside it. One that is missing or damaged leaves the dictionary empty: the
/// application starts without a version and without updates, and has a sentence to say why.
class InstalledBundle final : public app::BundleInfo {
public:
  [[nodiscard]] static InstalledBundle ofProgram(runtime::FileLayer& files);

  /// Where the files are that the application shows: the bundle's resources, or ../share/ventolith from the
  /// folder of a program without a bundle.
  [[nodiscard]] static std::filesystem::path resourceFolder();

  /// For standard error; none when all is well.
  [[nodiscard]] const std::optional<std::string>& complaint() const { return complaint_; }

  [[nodiscard]] std::optional<std::string> string(std::string_view key) const override;
  [[nodiscard]] std::optional<bool> boolean(std::string_view key) const override;

private:
  InstalledBundle(app::MapBundleInfo::Values values, std::optional<std::string> complaint);

  std::optional<std::string> complaint_;
  app::MapBundleInfo values_;
};

} // namespace ventolith::platform
