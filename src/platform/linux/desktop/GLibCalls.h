// GLib's asynchronous calls, waited for in the calling thread and up to a deadline.
#pragma once

#include <gio/gio.h>

#include <chrono>
#include <memory>
#include <utility>

namespace ventolith::platform {

struct Unreference {
  void operator()(gpointer object) const { g_object_unref(object); }
};
/// Holds a reference to an object of GLib's.
template <class Object>
using Reference = std::unique_ptr<Object, Unreference>;

struct FreeError {
  void operator()(GError* error) const { g_error_free(error); }
};
using Failure = std::unique_ptr<GError, FreeError>;

/// Calls that are made one after the other. Whatever is under way at the deadline ends then with
/// G_IO_ERROR_CANCELLED, and so does what is begun later. Objects that the calls gave go before this does.
class GLibCalls {
public:
  explicit GLibCalls(std::chrono::milliseconds patience);
  GLibCalls(const GLibCalls&) = delete;
  GLibCalls& operator=(const GLibCalls&) = delete;
  ~GLibCalls();

  /// Has `begin` begin a call with the cancellable, callback and user data that it is given, and waits for
  /// the result.
  template <class Begin>
  [[nodiscard]] Reference<GAsyncResult> result(Begin begin) {
    begin(cancellable_.get(), &GLibCalls::accept, static_cast<gpointer>(this));
    return wait();
  }

private:
  static void accept(GObject*, GAsyncResult* result, gpointer self);
  [[nodiscard]] Reference<GAsyncResult> wait();

  GMainContext* context_; // This thread's, for as long as this lives.
  GSource* deadline_;
  Reference<GCancellable> cancellable_;
  Reference<GAsyncResult> result_;
};

} // namespace ventolith::platform
