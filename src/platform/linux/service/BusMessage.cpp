#include "platform/linux/service/BusMessage.h"

#include <systemd/sd-bus.h>

#include <algorithm>

namespace ventolith::platform {

namespace {

/// The way to what the binding keeps to its own family. Never made.
struct Access : sdbus::Message {
  static void* raw(const sdbus::Message& message) { return message.*(&Access::msg_); }
};

} // namespace

sd_bus_message* rawOf(const sdbus::Message& message) {
  return static_cast<sd_bus_message*>(Access::raw(message));
}

bool hasSignature(const sdbus::Message& message, const std::string& signature) {
  return message.isValid() && sd_bus_message_has_signature(rawOf(message), signature.c_str()) > 0;
}

std::optional<std::string> readBytes(sdbus::Message& message, std::size_t limit) {
  if (!hasSignature(message, "ay")) return std::nullopt;
  const void* bytes = nullptr;
  std::size_t size = 0;
  if (sd_bus_message_rewind(rawOf(message), 1) < 0 ||
      sd_bus_message_read_array(rawOf(message), 'y', &bytes, &size) < 0) {
    return std::nullopt;
  }
  if (size == 0) return std::string();
  return std::string(static_cast<const char*>(bytes), std::min(size, limit));
}

bool appendBytes(sdbus::Message& message, std::string_view bytes) {
  return sd_bus_message_append_array(rawOf(message), 'y', bytes.data(), bytes.size()) >= 0;
}

void leaveServiceUnstarted(sdbus::MethodCall& call) {
  sd_bus_message_set_auto_start(rawOf(call), 0);
}

void allowInteractiveAuthorization(sdbus::MethodCall& call) {
  sd_bus_message_set_allow_interactive_authorization(rawOf(call), 1);
}

bool allowsInteractiveAuthorization(const sdbus::MethodCall& call) {
  return sd_bus_message_get_allow_interactive_authorization(rawOf(call)) > 0;
}

} // namespace ventolith::platform
