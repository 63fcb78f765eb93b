// A helper in the same process, which answers as it is told.
#pragma once

#include "helper/link/HelperBuildVersion.h"
#include "helper/link/InProcessLink.h"
#include "programs/ventolithctl/Fixture.h"

#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace ventolith::ctl {

/// Remembers the messages that reach it.
class ScriptedHelper final : public helper::HelperService {
public:
  explicit ScriptedHelper(runtime::Clock& clock) : clock_(clock) {}

  std::string build = helper::HelperBuildVersion::identifier;
  core::ControlResult result = core::ControlResult::applied; // Of every command.
  core::ControlState state;
  std::optional<std::string> stateText;          // Instead of the state.
  std::set<std::string, std::less<>> unanswered; // Messages by name; "*" is all of them.
  std::function<void(const helper::HelperMessage&)> onMessage = [](const auto&) {};

  struct Arrival {
    double seconds; // Since the helper was made.
    helper::HelperMessage message;
  };
  std::vector<Arrival> arrivals;

  [[nodiscard]] std::size_t countOf(std::string_view name) const;
  /// When messages of that name came.
  [[nodiscard]] std::vector<double> timesOf(std::string_view name) const;
  /// The messages in their order, without those that only ask.
  [[nodiscard]] std::vector<std::string> commands() const;

  runtime::Async<helper::HelperAnswer> answer(helper::HelperCaller caller,
                                              helper::HelperMessage message) override;
  void callerIsGone(const helper::HelperCaller&) override {}

private:
  runtime::Clock& clock_;
  runtime::Instant start_ = clock_.now();
};

/// What a registration is told to be, and what was asked of it.
struct Registration {
  helper::DaemonStatus status = helper::DaemonStatus::enabled;
  std::optional<std::string> registerError;
  helper::DaemonStatus statusAfterRegister = helper::DaemonStatus::enabled;
  std::optional<std::string> unregistrationError;
  helper::DaemonStatus statusAfterUnregister = helper::DaemonStatus::notRegistered;
  bool answers = true;
  bool isToOpenSettings = false; // Which is done with the next question.
  std::vector<std::string> log;
};

class RemoteTest : public CommandTest {
protected:
  RemoteTest();
  ~RemoteTest() override;

  void startHelper();
  /// The helper dies, and comes back after `away`, holding nothing.
  void restartHelper(runtime::Duration away);

  /// Does something while the command runs.
  void at(runtime::Duration time, std::function<void()> act);

  [[nodiscard]] double secondsPassed() const { return runtime::toSeconds(clock.now() - start_); }

  static core::ControlState holding(core::FanID fan, std::int64_t rpm);
  std::string planFile() const;

  helper::InProcessLink link{executor.get_executor()};
  ScriptedHelper helper{clock};
  std::shared_ptr<Registration> registration = std::make_shared<Registration>();

private:
  std::unique_ptr<helper::HelperListener> listener_;
  runtime::Instant start_ = clock.now();
};

/// "ventolithctl: …" and a line feed, as it stands on standard error.
[[nodiscard]] std::string complaint(const std::string& text);

} // namespace ventolith::ctl
