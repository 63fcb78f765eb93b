// The helper's end of the line, over XPC.
#pragma once

#include "helper/link/HelperListener.h"
#include "platform/macos/service/HelperIntake.h"
#include "platform/macos/service/MachService.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace ventolith::platform {

/// Listens under the name that launchd has given this process, to clients that satisfy the requirement of
/// `requirementForClients`, or without one to those of this process's own user. Belongs to the thread of
/// `executor`, where the service is called; connections and messages come on XPC's threads, and do nothing
/// there but post.
///
/// The name is launchd's and this process has it until it ends: `lost` is never called.
class XPCHelperListener final : public helper::HelperListener {
public:
  /// Clients that come wait, with launchd, for `resume`. Fails with ServiceError where launchd has not
  /// started this process under the service's name, and where the own signature cannot be trusted.
  XPCHelperListener(runtime::Executor executor, MachService service, std::shared_ptr<PresentCallers> callers);
  ~XPCHelperListener() override;

  void resume(helper::HelperService& service, std::function<void(std::string reason)> lost) override;
  void watch(const helper::HelperCaller& caller) override { intake_->watch(caller); }
  void unwatch(const helper::HelperCaller& caller) override { intake_->unwatch(caller); }
  /// Waits for the answers to be on their way, for a fifth of a second at most.
  void invalidate() override;

private:
  struct Ear;

  MachService service_;
  std::optional<std::string> requirement_;
  std::shared_ptr<HelperIntake> intake_;
  std::unique_ptr<Ear> ear_; // None before `resume` and after `invalidate`.
};

/// Whether launchd has started this process as the job of that name.
[[nodiscard]] bool isJobOf(const MachService& service);

} // namespace ventolith::platform
