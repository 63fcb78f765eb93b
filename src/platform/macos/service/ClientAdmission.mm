#include "platform/macos/service/ClientAdmission.h"

#include "platform/macos/CFOwned.h"
#include "platform/macos/service/CodeSigningRequirement.h"
#include "platform/macos/service/FoundationText.h"
#include "platform/macos/service/SystemServices.h"

#import <Security/Security.h>
#include <fmt/format.h>

namespace ventolith::platform {

namespace {

template <class Ref>
CFOwned<Ref> owned(OSStatus status, Ref object, const char* what) {
  CFOwned<Ref> result(object);
  if (status != errSecSuccess || !result)
    throw ServiceError(fmt::format("{} cannot be read: status {}.", what, status));
  return result;
}

CFOwned<SecCodeRef> ownCode() {
  SecCodeRef code = nullptr;
  const OSStatus status = ::SecCodeCopySelf(kSecCSDefaultFlags, &code);
  return owned(status, code, "This program's own code");
}

/// None for code that is not signed by a team.
std::optional<std::string> teamOf(SecCodeRef code) {
  SecStaticCodeRef onDisk = nullptr;
  const OSStatus found = ::SecCodeCopyStaticCode(code, kSecCSDefaultFlags, &onDisk);
  const auto file = owned(found, onDisk, "This program's file");
  CFDictionaryRef information = nullptr;
  const OSStatus read = ::SecCodeCopySigningInformation(file.get(), kSecCSSigningInformation, &information);
  const auto signature = owned(read, information, "This program's signature");
  const auto* const team = ::CFDictionaryGetValue(signature.get(), kSecCodeInfoTeamIdentifier);
  const bool isText = team != nullptr && ::CFGetTypeID(team) == ::CFStringGetTypeID();
  return isText ? std::optional(textOf((__bridge NSString*)team)) : std::nullopt;
}

/// The team was read from the file, which somebody may have replaced since this process started: what runs
/// has to be the team's as well.
void requireOwnCodeToBeOf(const std::string& team, SecCodeRef code) {
  const auto text = teamRequirement(team);
  if (!text) throw ServiceError("This program's signature names a team that is none.");
  SecRequirementRef parsed = nullptr;
  const OSStatus read =
      ::SecRequirementCreateWithString((__bridge CFStringRef)nsString(*text), kSecCSDefaultFlags, &parsed);
  const auto requirement = owned(read, parsed, "The requirement for this program");
  const OSStatus validity = ::SecCodeCheckValidity(code, kSecCSDefaultFlags, requirement.get());
  if (validity == errSecSuccess) return;
  throw ServiceError(fmt::format("This program's signature is not valid: status {}.", validity));
}

} // namespace

std::optional<std::string> requirementForClients() {
  @autoreleasepool {
    const auto code = ownCode();
    const auto team = teamOf(code.get());
    if (!team) return std::nullopt;
    requireOwnCodeToBeOf(*team, code.get());
    return clientRequirement(*team);
  }
}

} // namespace ventolith::platform
