// The way from the system's own threads to an executor.
#pragma once

#include "runtime/Async.h"

#include <boost/asio/post.hpp>

#include <mutex>
#include <optional>
#include <utility>

namespace ventolith::platform {

/// The system may call back at any moment, also when the executor and what runs it have gone: a doorway that
/// is shut drops what comes. Shared by whoever opens it and all callbacks that he leaves with the system.
///
/// Any thread. The mutex is held while work is handed over, never while it runs or goes.
class Doorway {
public:
  explicit Doorway(runtime::Executor executor) : executor_(std::move(executor)) {}

  /// Work of one thread runs in the order in which it was posted.
  template <class Work>
  void post(Work work) {
    const std::lock_guard held(mutex_);
    if (executor_) boost::asio::post(*executor_, std::move(work));
  }

  /// For whoever opened it, before the executor goes.
  void shut() {
    const std::lock_guard held(mutex_);
    executor_.reset();
  }

private:
  std::mutex mutex_;
  std::optional<runtime::Executor> executor_; // None once it is shut.
};

} // namespace ventolith::platform
