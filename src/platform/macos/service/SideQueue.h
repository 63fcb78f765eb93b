// A place for what blocks.
#pragma once

#include "helper/link/Completion.h"
#include "platform/macos/service/Doorway.h"
#include "runtime/Async.h"

#include <functional>
#include <memory>
#include <type_traits>
#include <utility>

namespace ventolith::platform {

/// Runs work that waits for the system, one piece after another, beside the engine's thread, which goes on.
/// Belongs to that thread. When it goes, what was begun runs on, and nobody hears of it.
class SideQueue {
public:
  explicit SideQueue(runtime::Executor executor);
  SideQueue(const SideQueue&) = delete;
  SideQueue& operator=(const SideQueue&) = delete;
  ~SideQueue();

  /// The work is on its way when this returns, whether or not its result is waited for. It refers to nothing
  /// that could go meanwhile, and never throws.
  template <class Work>
  runtime::Async<std::invoke_result_t<Work>> run(Work work) {
    using Result = std::invoke_result_t<Work>;
    const auto completion = std::make_shared<helper::Completion<Result>>(executor_);
    // Weakly: the executor's thread alone may let go of it.
    post([doorway = doorway_, awaited = std::weak_ptr(completion), work = std::move(work)] {
      doorway->post([awaited, result = work()]() mutable {
        if (const auto present = awaited.lock()) present->complete(std::move(result));
      });
    });
    return helper::Completion<Result>::valueOf(completion);
  }

  void post(std::function<void()> work);

private:
  struct Queue;

  runtime::Executor executor_;
  std::shared_ptr<Doorway> doorway_;
  std::unique_ptr<Queue> queue_;
};

} // namespace ventolith::platform
