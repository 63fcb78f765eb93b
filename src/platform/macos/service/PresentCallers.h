// The callers that the listener has let in and that have not gone.
#pragma once

#include "helper/link/HelperListener.h"
#include "helper/link/HelperSurroundings.h"

#include <sys/types.h>

#include <map>
#include <memory>
#include <optional>
#include <utility>

namespace ventolith::platform {

/// Belongs to the engine's thread.
class PresentCallers {
public:
  void add(const helper::HelperCaller& caller, uid_t user) { users_.emplace(caller, user); }
  void remove(const helper::HelperCaller& caller) { users_.erase(caller); }

  /// The user that it runs as; none if it is not here.
  [[nodiscard]] std::optional<uid_t> userOf(const helper::HelperCaller& caller) const {
    const auto present = users_.find(caller);
    return present == users_.end() ? std::nullopt : std::optional(present->second);
  }

private:
  std::map<helper::HelperCaller, uid_t> users_;
};

/// Who came past the listener has permission, as long as he is here: the listener has looked at his
/// signature, and no person is asked.
class AdmittedAuthorizer final : public helper::CallerAuthorizer {
public:
  explicit AdmittedAuthorizer(std::shared_ptr<const PresentCallers> callers) : callers_(std::move(callers)) {}

  runtime::Async<bool> mayControlFans(helper::HelperCaller caller, runtime::StopToken stop) override {
    co_return !stop.stopRequested() && callers_->userOf(caller).has_value();
  }

private:
  std::shared_ptr<const PresentCallers> callers_;
};

/// Of those, only who runs as `user`.
class SameUserAuthorizer final : public helper::CallerAuthorizer {
public:
  SameUserAuthorizer(std::shared_ptr<const PresentCallers> callers, uid_t user)
      : callers_(std::move(callers)), user_(user) {}

  runtime::Async<bool> mayControlFans(helper::HelperCaller caller, runtime::StopToken stop) override {
    co_return !stop.stopRequested() && callers_->userOf(caller) == user_;
  }

private:
  std::shared_ptr<const PresentCallers> callers_;
  uid_t user_;
};

} // namespace ventolith::platform
