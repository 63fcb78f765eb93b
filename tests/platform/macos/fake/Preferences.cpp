#include "Preferences.h"

#include "Objects.h"

using ventolith::fake::Object;
using ventolith::fake::Objects;
using ventolith::fake::Preferences;

namespace {

/// The key's text. Whatever is asked for is the running application's.
std::string keyOf(CFStringRef key, CFStringRef application, const char* function) {
  const Object* const asked = Objects::get().alive(application, function, "string");
  if (asked == nullptr || asked->text != "kCFPreferencesCurrentApplication")
    Objects::get().complain(std::string(function) + " was asked for another application");
  const Object* const name = Objects::get().alive(key, function, "string");
  return name == nullptr ? "" : name->text;
}

} // namespace

extern "C" {

const CFStringRef kCFPreferencesCurrentApplication = FakeConstantString("kCFPreferencesCurrentApplication");

Boolean CFPreferencesGetAppBooleanValue(CFStringRef key, CFStringRef application, Boolean*) {
  const auto& values = Preferences::get().set;
  const auto found = values.find(keyOf(key, application, "CFPreferencesGetAppBooleanValue"));
  return found != values.end() && found->second;
}

void CFPreferencesSetAppValue(CFStringRef key, CFTypeRef value, CFStringRef application) {
  const char* const function = "CFPreferencesSetAppValue";
  const Object* const truth = Objects::get().alive(value, function, "boolean");
  Preferences::get().set[keyOf(key, application, function)] = truth != nullptr && truth->text == "true";
}

Boolean CFPreferencesAppSynchronize(CFStringRef application) {
  keyOf(application, application, "CFPreferencesAppSynchronize");
  Preferences::get().onDisk = Preferences::get().set;
  return 1;
}
}
