// The application's end of the line, over the message bus.
#pragma once

#include "helper/link/HelperChannel.h"
#include "platform/linux/service/BusConnection.h"

#include <memory>
#include <optional>

namespace ventolith::platform {

/// Belongs to the thread of `executor`, which calls the handlers. The bus outlives it.
///
/// The helper is interrupted when its name on the bus changes hands in any way, also when it is taken first.
/// A call to a helper that dies is ended by the bus itself.
class DBusHelperChannel final : public helper::HelperChannel {
public:
  DBusHelperChannel(runtime::Executor executor, Bus& bus) : executor_(std::move(executor)), bus_(bus) {}
  ~DBusHelperChannel() override;

  void resume(Handlers handlers) override;
  runtime::Async<std::optional<helper::HelperReply>> call(helper::HelperMessage message) override;
  void send(helper::HelperMessage message) override;
  void invalidate() override;

private:
  void tell(std::function<void()> Handlers::* handler);
  void tellOfInvalidation();

  runtime::Executor executor_;
  Bus& bus_;
  std::shared_ptr<const Handlers> handlers_;  // None before `resume` and after `invalidate`.
  std::shared_ptr<BusConnection> connection_; // None when the bus could not be reached.
  BusMatch ownerMatch_;
  runtime::StopObservation lossObservation_;
  runtime::StopSource ended_;
  bool isInvalidationTold_ = false;
};

} // namespace ventolith::platform
