// What messages of the bus need besides sdbus-c++'s own operators: bodies that are read without exceptions,
// bytes that are not copied one by one, and the flag by which a service may ask a person for permission.
#pragma once

#include <sdbus-c++/Error.h>
#include <sdbus-c++/Message.h>
#include <sdbus-c++/Types.h>

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

struct sd_bus_message;

namespace ventolith::platform {

/// The message below sdbus-c++'s, which keeps it.
[[nodiscard]] sd_bus_message* rawOf(const sdbus::Message& message);

/// Whether the whole body is made as told: "sx", or "" for none.
[[nodiscard]] bool hasSignature(const sdbus::Message& message, const std::string& signature);

/// Reads the whole body, from its beginning; false, and nothing is read, when it is not made of exactly
/// `values`.
template <class... Values>
[[nodiscard]] bool readBody(sdbus::Message& message, Values&... values) {
  if (!hasSignature(message, (std::string() + ... + sdbus::signature_of<Values>::str()))) return false;
  try {
    message.rewind(true);
    static_cast<void>((message >> ... >> values));
    return true;
  } catch (const sdbus::Error&) {
    return false;
  }
}

/// Reads a body that is one array of bytes ("ay"), at most its first `limit` of them; none when it is made
/// otherwise.
[[nodiscard]] std::optional<std::string> readBytes(sdbus::Message& message, std::size_t limit);

/// Appends an array of bytes; false when it is longer than a message can be.
[[nodiscard]] bool appendBytes(sdbus::Message& message, std::string_view bytes);

/// The call is for a service that runs, and starts none.
void leaveServiceUnstarted(sdbus::MethodCall& call);

/// The service may ask a person before it answers, however long that takes.
void allowInteractiveAuthorization(sdbus::MethodCall& call);
[[nodiscard]] bool allowsInteractiveAuthorization(const sdbus::MethodCall& call);

} // namespace ventolith::platform
