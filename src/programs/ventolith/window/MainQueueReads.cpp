#include "programs/ventolith/window/MainQueueReads.h"

#include "platform/system/Descriptor.h"

#include <fcntl.h>

#include <cerrno>
#include <cstdint>
#include <memory>
#include <system_error>
#include <utility>

namespace ventolith::programs {

namespace {

/// Stands until the queue has let go of the source, which is later than its cancellation: until then the
/// descriptor must stay open, and so it is one of the source's own.
struct Reading {
  platform::Descriptor descriptor;
  std::function<void()> onReadable;

  static void happen(void* reading) { static_cast<const Reading*>(reading)->onReadable(); }
  static void end(void* reading) { const std::unique_ptr<Reading> last(static_cast<Reading*>(reading)); }
};

platform::Descriptor ownCopy(int descriptor) {
  platform::Descriptor copy(::fcntl(descriptor, F_DUPFD_CLOEXEC, 0));
  if (!copy.isOpen()) throw std::system_error(errno, std::generic_category(), "fcntl");
  return copy;
}

dispatch_source_t newSource(int descriptor) {
  const dispatch_source_t source = dispatch_source_create(
      DISPATCH_SOURCE_TYPE_READ, static_cast<std::uintptr_t>(descriptor), 0, dispatch_get_main_queue());
  if (source == nullptr)
    throw std::system_error(std::make_error_code(std::errc::invalid_argument), "dispatch_source_create");
  return source;
}

} // namespace

MainQueueReads::MainQueueReads(int descriptor, std::function<void()> onReadable) {
  auto reading = std::make_unique<Reading>(ownCopy(descriptor), std::move(onReadable));
  source_ = newSource(reading->descriptor.get());
  dispatch_set_context(source_, reading.release()); // Ends with the source.
  dispatch_source_set_event_handler_f(source_, &Reading::happen);
  dispatch_source_set_cancel_handler_f(source_, &Reading::end);
  dispatch_resume(source_);
}

MainQueueReads::~MainQueueReads() {
  dispatch_source_cancel(source_);
  dispatch_release(source_);
}

} // namespace ventolith::programs
