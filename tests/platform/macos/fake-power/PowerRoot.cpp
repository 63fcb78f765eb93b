#include "fake-power/PowerRoot.h"

#include <stdexcept>

struct IONotificationPort {};
struct DispatchQueue {};

namespace fake {

namespace {

constexpr io_connect_t rootConnection = 71;
constexpr io_object_t rootNotifier = 72;

PowerRoot* inForce = nullptr;
IONotificationPort thePort;
DispatchQueue theQueue;

PowerRoot& root() {
  if (inForce == nullptr) throw std::logic_error("there is no power management");
  return *inForce;
}

void require(bool isRight, const char* what) {
  if (!isRight) throw std::logic_error(what);
}

} // namespace

PowerRoot::PowerRoot() {
  inForce = this;
}

PowerRoot::~PowerRoot() {
  inForce = nullptr;
}

void PowerRoot::tell(natural_t message, std::intptr_t change) {
  if (registration.callback == nullptr || registration.queue == nullptr) return;
  registration.callback(registration.context, rootConnection, message, reinterpret_cast<void*>(change));
}

} // namespace fake

using namespace fake;

extern "C" {

io_connect_t IORegisterForSystemPower(void* context, IONotificationPortRef* port,
                                      IOServiceInterestCallback callback, io_object_t* notifier) {
  if (!root().takesRegistrations) return MACH_PORT_NULL;
  root().registration = {.context = context, .callback = callback};
  *port = &thePort;
  *notifier = rootNotifier;
  return rootConnection;
}

kern_return_t IODeregisterForSystemPower(io_object_t* notifier) {
  require(*notifier == rootNotifier, "another's registration");
  root().log.emplace_back("deregistered");
  root().registration = {};
  return 0;
}

kern_return_t IOAllowPowerChange(io_connect_t connection, std::intptr_t change) {
  require(connection == rootConnection, "another's connection");
  root().log.push_back("allowed " + std::to_string(change));
  return 0;
}

kern_return_t IOServiceClose(io_connect_t connection) {
  require(connection == rootConnection, "another's connection");
  root().log.emplace_back("connection closed");
  return 0;
}

void IONotificationPortSetDispatchQueue(IONotificationPortRef port, dispatch_queue_t queue) {
  require(port == &thePort, "another's port");
  root().registration.queue = queue;
}

void IONotificationPortDestroy(IONotificationPortRef port) {
  require(port == &thePort, "another's port");
  root().log.emplace_back("port destroyed");
}

dispatch_queue_t dispatch_queue_create(const char*, const void*) {
  ++root().queues;
  return &theQueue;
}

void dispatch_release(dispatch_queue_t) {
  --root().queues;
}

void dispatch_sync_f(dispatch_queue_t, void* context, void (*work)(void* context)) {
  work(context);
}
}
