// The application's end of the line, over XPC.
#pragma once

#include "helper/link/HelperChannel.h"
#include "platform/macos/service/Doorway.h"
#include "platform/macos/service/MachService.h"

#include <memory>
#include <optional>

namespace ventolith::platform {

/// Belongs to the thread of `executor`, which calls the handlers. Replies, failures and the ends of the
/// connection come on XPC's threads, and do nothing there but post.
///
/// XPC itself ends a call to a helper that dies. Any message starts a helper that is registered and does not
/// run, a heartbeat included; one that was removed is not known by its name any more, and stays removed.
class XPCHelperChannel final : public helper::HelperChannel {
public:
  XPCHelperChannel(runtime::Executor executor, MachService service);
  ~XPCHelperChannel() override;

  void resume(Handlers handlers) override;
  runtime::Async<std::optional<helper::HelperReply>> call(helper::HelperMessage message) override;
  void send(helper::HelperMessage message) override;
  void invalidate() override;

private:
  struct Line;

  runtime::Executor executor_;
  MachService service_;
  std::shared_ptr<Doorway> doorway_;
  std::shared_ptr<Line> line_; // None before `resume` and after `invalidate`.
};

} // namespace ventolith::platform
