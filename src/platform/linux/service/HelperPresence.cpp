#include "platform/linux/service/HelperPresence.h"

#include "platform/linux/service/DBusHelperProtocol.h"

#include <systemd/sd-bus.h>

#include <cerrno>
#include <cstdint>
#include <memory>
#include <utility>

namespace ventolith::platform {

namespace {

struct Close {
  // Without the flush, which would wait for a bus that does not answer.
  void operator()(sd_bus* bus) const { sd_bus_close_unref(bus); }
};
using OpenBus = std::unique_ptr<sd_bus, Close>;

/// Waits for nothing: what is sent waits for the bus's welcome.
OpenBus open(const std::optional<std::string>& address) {
  sd_bus* bus = nullptr;
  if (!address) return OpenBus(sd_bus_open_system(&bus) < 0 ? nullptr : bus);
  if (sd_bus_new(&bus) < 0) return nullptr;
  OpenBus opened(bus);
  const bool isStarted = sd_bus_set_address(bus, address->c_str()) >= 0 &&
                         sd_bus_set_bus_client(bus, 1) >= 0 && sd_bus_start(bus) >= 0;
  return isStarted ? std::move(opened) : nullptr;
}

struct Answer {
  bool hasCome = false;
  bool isOwned = false;
};

int answered(sd_bus_message* message, void* data, sd_bus_error*) {
  auto& answer = *static_cast<Answer*>(data);
  int isOwned = 0;
  answer.isOwned = sd_bus_message_read(message, "b", &isOwned) > 0 && isOwned != 0;
  answer.hasCome = true;
  return 0;
}

} // namespace

bool isHelperPresent(const std::optional<std::string>& address, std::chrono::milliseconds limit) {
  using Time = std::chrono::steady_clock;
  const auto deadline = Time::now() + limit;
  const OpenBus bus = open(address);
  Answer answer;
  if (!bus || sd_bus_call_method_async(bus.get(), nullptr, "org.freedesktop.DBus", "/org/freedesktop/DBus",
                                       "org.freedesktop.DBus", "NameHasOwner", &answered, &answer, "s",
                                       protocol::busName) < 0) {
    return false;
  }
  while (!answer.hasCome) {
    const int outcome = sd_bus_process(bus.get(), nullptr);
    const auto left = std::chrono::duration_cast<std::chrono::microseconds>(deadline - Time::now()).count();
    if (outcome < 0 || left <= 0) break;
    if (outcome > 0) continue;
    const int waited = sd_bus_wait(bus.get(), static_cast<std::uint64_t>(left));
    if (waited < 0 && waited != -EINTR) break; // A signal is no answer.
  }
  return answer.isOwned;
}

} // namespace ventolith::platform
