#include "helper/daemon/Callers.h"

#include <algorithm>

namespace ventolith::helper {

std::shared_ptr<KnownCaller> Callers::find(const HelperCaller& name) const {
  const auto found = known_.find(name);
  return found == known_.end() ? nullptr : found->second;
}

std::shared_ptr<KnownCaller> Callers::beginCall(const HelperCaller& name, std::size_t bytes) {
  auto caller = find(name);
  if (!caller) {
    caller = std::make_shared<KnownCaller>();
    known_.emplace(name, caller);
    listener_.watch(name);
  }
  ++caller->unanswered;
  ++load_.calls;
  load_.bytes += bytes;
  return caller;
}

void Callers::endCall(const HelperCaller& name, KnownCaller& caller, std::size_t bytes) {
  --caller.unanswered;
  --load_.calls;
  load_.bytes -= bytes;
  if (caller.gone.stopRequested() || caller.isAdmitted || caller.unanswered > 0) return;
  known_.erase(name);
  listener_.unwatch(name);
}

std::shared_ptr<KnownCaller> Callers::take(const HelperCaller& name) {
  auto caller = find(name);
  known_.erase(name);
  return caller;
}

bool Complaints::isNew(Refusal::Reason about, const HelperCaller& caller) {
  const auto complaint = std::pair(about, caller);
  if (std::find(said_.begin(), said_.end(), complaint) != said_.end()) return false;
  if (said_.size() == most) said_.pop_front();
  said_.push_back(complaint);
  return true;
}

void Complaints::settle(Refusal::Reason about, const HelperCaller& caller) {
  std::erase(said_, std::pair(about, caller));
}

void Complaints::forget(const HelperCaller& caller) {
  std::erase_if(said_, [&caller](const auto& complaint) { return complaint.second == caller; });
}

} // namespace ventolith::helper
