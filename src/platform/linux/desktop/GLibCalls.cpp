#include "platform/linux/desktop/GLibCalls.h"

namespace ventolith::platform {

GLibCalls::GLibCalls(std::chrono::milliseconds patience)
    : context_(g_main_context_new()),
      deadline_(g_timeout_source_new(static_cast<guint>(patience.count()))),
      cancellable_(g_cancellable_new()) {
  g_main_context_push_thread_default(context_);
  const auto cancel = [](gpointer cancellable) -> gboolean {
    g_cancellable_cancel(static_cast<GCancellable*>(cancellable));
    return G_SOURCE_REMOVE;
  };
  g_source_set_callback(deadline_, cancel, cancellable_.get(), nullptr);
  g_source_attach(deadline_, context_);
}

GLibCalls::~GLibCalls() {
  g_source_destroy(deadline_);
  g_source_unref(deadline_);
  while (g_main_context_iteration(context_, FALSE) != FALSE) {
    // What the objects that are gone have left to be done.
  }
  g_main_context_pop_thread_default(context_);
  g_main_context_unref(context_);
}

void GLibCalls::accept(GObject*, GAsyncResult* result, gpointer self) {
  g_object_ref(result);
  static_cast<GLibCalls*>(self)->result_.reset(result);
}

Reference<GAsyncResult> GLibCalls::wait() {
  while (!result_)
    g_main_context_iteration(context_, TRUE);
  return std::move(result_);
}

} // namespace ventolith::platform
