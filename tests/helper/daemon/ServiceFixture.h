// The service between recorded fans and callers that a test plays.
#pragma once

#include "helper/daemon/Doubles.h"
#include "helper/daemon/FanHelperService.h"
#include "support/VirtualTime.h"

#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace ventolith::helper {

/// What became of a call: nothing yet, or the answer.
using Call = std::shared_ptr<std::optional<HelperAnswer>>;

class ServiceTest : public testing::Test {
protected:
  static constexpr const char* anna = ":1.1";
  static constexpr const char* bert = ":1.2";

  /// Sends a message and lets everything happen that can.
  Call begin(const std::string& caller, HelperMessage message) {
    auto call = std::make_shared<std::optional<HelperAnswer>>();
    time.start(keep(service.answer({caller}, std::move(message)), call));
    return call;
  }
  /// The answer to a message that is answered at once.
  HelperAnswer answer(const std::string& caller, HelperMessage message) {
    const Call call = begin(caller, std::move(message));
    if (!*call) throw std::logic_error("there is no answer yet");
    return **call;
  }
  void allow(std::size_t question) { decide(question, true); }
  void decide(std::size_t question, bool verdict) {
    authorizer.answer(question, verdict);
    time.clock.settle();
  }
  void gone(const std::string& caller) {
    service.callerIsGone({caller});
    std::erase(listener.watched, caller);
    time.clock.settle();
  }

  static HelperAnswer code(std::int64_t value) { return replies::Code{value}; }
  static Refusal::Reason reasonOf(const HelperAnswer& answer) {
    return std::get<Refusal>(answer.value()).reason;
  }
  static messages::ApplyConfig plan(std::size_t fans) {
    core::FanControlPlan plan;
    for (std::size_t fan = 0; fan < fans; ++fan)
      plan.fans.push_back({static_cast<core::FanID>(fan), core::FanControlModePlan::fixedPercent(50)});
    return {core::encode(plan)};
  }

  support::VirtualTime time;
  RecordingFans fans;
  RecordingListener listener;
  ScriptedAuthorizer authorizer;
  RecordingLog log;
  int timesRoomWasMade = 0;
  FanHelperService service{{.fans = fans,
                            .listener = listener,
                            .authorizer = authorizer,
                            .log = log,
                            .buildIdentifier = "2.0.0+9",
                            .madeRoom = [this] { ++timesRoomWasMade; }}};

private:
  static runtime::Async<void> keep(runtime::Async<HelperAnswer> work, Call call) {
    *call = co_await std::move(work);
  }
};

} // namespace ventolith::helper
