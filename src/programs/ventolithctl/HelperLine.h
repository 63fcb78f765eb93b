// One command's line to the helper.
#pragma once

#include "helper/link/XPCFanController.h"
#include "programs/ventolithctl/Context.h"
#include "programs/ventolithctl/Patience.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>

namespace ventolith::ctl {

/// How long a helper may take to tell something that it knows.
inline constexpr runtime::Duration answerLimit = std::chrono::seconds(5);

/// When it goes, the connection is closed, and every call that is still under way ends.
class HelperLine {
public:
  /// What becomes of a helper of another build.
  enum class OtherBuild {
    isReplaced, ///< It is asked to end, so that the build that is installed starts: what every client does.
    isLeft,
  };

  /// `context` outlives it, and all that it starts.
  HelperLine(const runtime::Executor& executor, Context& context, OtherBuild otherBuild);
  HelperLine(const HelperLine&) = delete;
  HelperLine& operator=(const HelperLine&) = delete;
  ~HelperLine() = default;

  [[nodiscard]] helper::XPCFanController& controller() const { return *controller_; }
  [[nodiscard]] std::weak_ptr<helper::XPCFanController> weakController() const { return controller_; }

  /// The helper's build. Fails with CommandError when there is no helper, when it does not answer in time,
  /// and when the user ends the command.
  runtime::Async<std::string> requireBuild();

  /// What `work` gives, however long it takes. Fails with CommandError when the user ends the command.
  template <class Result>
  runtime::Async<Result> finish(runtime::Async<Result> work) {
    auto result = co_await within(noLimit, context_.clock, context_.stop, std::move(work));
    if (!result) throw CommandError(ExitStatus::interrupted, "interrupted before the helper answered");
    co_return std::move(*result);
  }

  /// `observer` is called, by itself, whenever the helper has gone away or another has taken its place.
  void onInterruption(std::function<void()> observer) { *interrupted_ = std::move(observer); }

private:
  class Channel;

  Context& context_;
  std::shared_ptr<std::function<void()>> interrupted_; // Known weakly by the channels.
  std::shared_ptr<helper::XPCFanController> controller_;
};

} // namespace ventolith::ctl
