#include "app/UserFiles.h"

#include <exception>
#include <string_view>
#include <utility>

namespace ventolith::app {

using core::JSON;

namespace {

/// A preset of ten fans takes some 10 kilobytes and 500 values: this is several hundred of them.
constexpr core::JSONBounds bounds{.bytes = std::size_t{4} << 20, .values = std::size_t{1} << 18};

std::optional<JSON> parsed(std::string_view text) {
  try {
    return core::parseJSON(text, bounds);
  } catch (const std::exception&) {
    return std::nullopt;
  }
}

/// None for a number that is not finite, which has no form.
std::optional<std::string> written(const JSON& document) {
  try {
    return core::writePrettyJSON(document);
  } catch (const std::exception&) {
    return std::nullopt;
  }
}

} // namespace

UserFiles::UserFiles(runtime::FileLayer& files, FolderLookup userFolder)
    : files_(&files), userFolder_(std::move(userFolder)) {}

std::optional<JSON> UserFiles::read(const std::string& name) const {
  const auto text = files_->read(directory() / name, bounds.bytes);
  return text ? parsed(*text) : std::nullopt;
}

void UserFiles::write(const std::string& name, const JSON& document) const {
  ensureDirectory();
  const auto text = written(document);
  if (!text || !parsed(*text)) return;
  (void)runtime::replaceFile(*files_, directory() / name, *text, runtime::ordinaryFile);
}

void UserFiles::remove(const std::string& name) const {
  (void)files_->remove(directory() / name);
}

std::filesystem::path UserFiles::directory() const {
  return userFolder_() / "Ventolith";
}

void UserFiles::ensureDirectory() const {
  (void)files_->createFolders(directory());
}

} // namespace ventolith::app
