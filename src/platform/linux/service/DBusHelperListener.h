// The helper's end of the line, over the message bus.
#pragma once

#include "helper/link/HelperListener.h"
#include "platform/linux/service/BusConnection.h"

#include <sdbus-c++/IObject.h>

#include <functional>
#include <memory>
#include <string>

namespace ventolith::platform {

/// Owns the helper's name on the bus, and exports its object. Belongs to the thread of `executor`, where the
/// service is called, never inside the handling of what arrives.
///
/// A message that is not made as the protocol says never reaches the service: its caller gets an error. So
/// does a caller whose message is under way when the listener stops.
class DBusHelperListener final : public helper::HelperListener {
public:
  /// Takes the name. Nothing that comes over `connection` is handled before `resume`. Fails with
  /// AnotherHelperError and ServiceError.
  DBusHelperListener(runtime::Executor executor, std::shared_ptr<BusConnection> connection);
  ~DBusHelperListener() override;

  void resume(helper::HelperService& service, std::function<void(std::string reason)> lost) override;
  void watch(const helper::HelperCaller& caller) override;
  void unwatch(const helper::HelperCaller& caller) override;
  void invalidate() override;

private:
  struct State;
  struct Method;

  void claimName();
  void exportObject();
  void exportMethod(Method method);

  runtime::Executor executor_;
  std::shared_ptr<BusConnection> connection_;
  std::shared_ptr<State> state_; // None after `invalidate`.
  std::unique_ptr<sdbus::IObject> object_;
  runtime::StopObservation lossObservation_;
};

} // namespace ventolith::platform
