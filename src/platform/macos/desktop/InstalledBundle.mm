#include "platform/macos/desktop/InstalledBundle.h"

#include "app/platform-kit/PropertyList.h"
#include "platform/macos/service/FoundationText.h"

#include <fmt/format.h>

#include <utility>

namespace ventolith::platform {

namespace fs = std::filesystem;

using Values = app::MapBundleInfo::Values;

namespace {

/// None for a program without a bundle: Foundation makes one up of its folder, without an identifier.
NSBundle* ownBundle() {
  NSBundle* const bundle = NSBundle.mainBundle;
  return bundle.bundleIdentifier == nil ? nil : bundle;
}

/// Property lists tell booleans from numbers, which Foundation does not show at once.
bool isBoolean(id value) {
  return [value isKindOfClass:NSNumber.class] &&
         ::CFGetTypeID((__bridge CFTypeRef)value) == ::CFBooleanGetTypeID();
}

Values valuesOf(NSDictionary<NSString*, id>* dictionary) {
  Values values;
  for (NSString* key in dictionary) {
    const id value = dictionary[key];
    if ([value isKindOfClass:NSString.class])
      values.emplace(textOf(key), textOf(static_cast<NSString*>(value)));
    if (isBoolean(value)) values.emplace(textOf(key), [value boolValue] == YES);
  }
  return values;
}

} // namespace

InstalledBundle::InstalledBundle(Values values, std::optional<std::string> complaint)
    : complaint_(std::move(complaint)), values_(std::move(values)) {}

InstalledBundle InstalledBundle::ofProgram(runtime::FileLayer& files) {
  @autoreleasepool {
    if (NSBundle* const bundle = ownBundle()) return {valuesOf(bundle.infoDictionary), std::nullopt};
  }
  const fs::path file = resourceFolder() / "Info.plist";
  auto values = app::readPropertyList(files, file);
  if (values) return {std::move(*values), std::nullopt};
  return {Values(), fmt::format("{}: {}; this build knows neither its version nor its updates", file.string(),
                                values.error().description)};
}

fs::path InstalledBundle::resourceFolder() {
  @autoreleasepool {
    if (NSBundle* const bundle = ownBundle()) return textOf(bundle.resourcePath);
    const fs::path program = textOf(NSBundle.mainBundle.executablePath.stringByResolvingSymlinksInPath);
    return (program.parent_path() / "../share/ventolith").lexically_normal();
  }
}

std::optional<std::string> InstalledBundle::string(std::string_view key) const {
  return values_.string(key);
}

std::optional<bool> InstalledBundle::boolean(std::string_view key) const {
  return values_.boolean(key);
}

} // namespace ventolith::platform
