#include "DispatchSources.h"

#include "Objects.h"

#include <poll.h>

#include <algorithm>

namespace ventolith::fake {

namespace {

bool isReadable(int descriptor) {
  pollfd one{.fd = descriptor, .events = POLLIN, .revents = 0};
  if (::poll(&one, 1, 0) < 0 || (one.revents & POLLNVAL) != 0)
    Objects::get().complain("a source waits for a descriptor that is closed");
  return (one.revents & POLLIN) != 0;
}

} // namespace

void DispatchSources::turn() {
  const std::size_t before = sources_.size(); // One that is made meanwhile has its turn later.
  for (std::size_t place = 0; place < before; ++place) {
    Source& source = sources_[place];
    if (source.isCancelled || !source.isResumed || !isReadable(source.descriptor)) continue;
    ++source.references; // Whoever is called may let go of it.
    source.onEvent(source.context);
    release(source);
  }
}

std::size_t DispatchSources::count() const {
  return static_cast<std::size_t>(std::count_if(sources_.begin(), sources_.end(),
                                                [](const Source& source) { return source.references > 0; }));
}

DispatchSources::Source* DispatchSources::create(int descriptor) {
  return givesSources ? &sources_.emplace_back(Source{.descriptor = descriptor}) : nullptr;
}

void DispatchSources::cancel(Source& source) {
  source.isCancelled = true;
  ++source.references;
  dispatch_async_f(dispatch_get_main_queue(), &source, [](void* cancelled) {
    auto& its = *static_cast<Source*>(cancelled);
    if (its.onCancel != nullptr) its.onCancel(its.context);
    release(its);
  });
}

void DispatchSources::release(Source& source) {
  if (source.references <= 0) return Objects::get().complain("a source was released that is gone");
  if (--source.references == 0 && !(source.isResumed && source.isCancelled))
    Objects::get().complain("a source went that was not cancelled");
}

} // namespace ventolith::fake

using ventolith::fake::DispatchSources;
using ventolith::fake::Objects;
using Source = DispatchSources::Source;

namespace {

Source& behind(dispatch_source_t source) {
  auto& its = *reinterpret_cast<Source*>(source);
  if (its.references <= 0) Objects::get().complain("a source was used that is gone");
  return its;
}

const int readType = 0; // Of which the address alone counts.

} // namespace

extern "C" {

const dispatch_source_type_t DISPATCH_SOURCE_TYPE_READ = reinterpret_cast<dispatch_source_type_t>(&readType);

dispatch_source_t dispatch_source_create(dispatch_source_type_t type, std::uintptr_t handle,
                                         std::uintptr_t mask, dispatch_queue_t queue) {
  if (type != DISPATCH_SOURCE_TYPE_READ || mask != 0 || queue != dispatch_get_main_queue())
    Objects::get().complain("a source of another kind was made");
  return reinterpret_cast<dispatch_source_t>(DispatchSources::get().create(static_cast<int>(handle)));
}

void dispatch_set_context(dispatch_source_t source, void* context) {
  behind(source).context = context;
}

void dispatch_source_set_event_handler_f(dispatch_source_t source, dispatch_function_t handler) {
  behind(source).onEvent = handler;
}

void dispatch_source_set_cancel_handler_f(dispatch_source_t source, dispatch_function_t handler) {
  behind(source).onCancel = handler;
}

void dispatch_resume(dispatch_source_t source) {
  behind(source).isResumed = true;
}

void dispatch_source_cancel(dispatch_source_t source) {
  DispatchSources::cancel(behind(source));
}

void dispatch_release(dispatch_source_t source) {
  DispatchSources::release(behind(source));
}

} // extern "C"
