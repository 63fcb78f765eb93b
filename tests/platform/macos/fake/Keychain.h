// The keychain of the fake system.
#pragma once

#include "InForce.h"
#include "Objects.h"

#include <Security/Security.h>

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace ventolith::fake {

class Keychain : public InForce<Keychain> {
public:
  /// Names and values of a dictionary, as texts.
  using Attributes = std::map<std::string, std::string>;

  Keychain() : InForce(this) {}

  // What the test sets.
  std::vector<Attributes> items;
  std::optional<OSStatus> reading; // The answer in place of the keychain's own.
  std::optional<OSStatus> updating;
  std::optional<OSStatus> adding;
  std::string given = "data";                // The type of what a reading gives; "" is nothing at all.
  std::function<void()> afterUpdate = [] {}; // Another process's turn.

  // What the sources under test did.
  std::vector<Attributes> readings;
  std::vector<Attributes> updates; // What was to be changed.
  std::vector<Attributes> updateQueries;
  std::vector<Attributes> additions;

  // The system's functions.
  OSStatus copyMatching(const Attributes& query, CFTypeRef* result);
  OSStatus update(const Attributes& query, const Attributes& changes);
  OSStatus add(const Attributes& attributes);

private:
  [[nodiscard]] Attributes* find(const Attributes& query);
};

} // namespace ventolith::fake
