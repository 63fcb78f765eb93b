// How a fan is taken out of firmware control. Writing its mode key can be refused until the force latch
// is set, and can go on being refused for seconds after that, so the claim is a retry loop with its own
// rules for which refusals count.
#include "helper/engine/LocalFanController.h"

#include "hardware/FanKeys.h"

#include <fmt/format.h>

namespace ventolith::helper {

using core::ControlResult;
using core::FanID;
using runtime::Async;
namespace fankeys = hardware::fankeys;

namespace {

constexpr runtime::Duration claimBudget = std::chrono::seconds(10);
constexpr runtime::Duration claimInterval = std::chrono::milliseconds(100);
constexpr int attemptsPerLatch = 20;  // The latch is rewritten with every twentieth attempt.
constexpr int identicalRefusals = 5;  // So many in a row end the claim.
constexpr std::uint8_t notYet = 0x82; // The SMC's answer while the latch takes hold: no refusal at all.
constexpr std::uint8_t driverFailed = 255;
constexpr auto keyNotFound = static_cast<std::uint8_t>(hardware::SMCParamStruct::ResultCode::keyNotFound);

/// Counts identical refusals in a row.
class RefusalCount {
public:
  /// Takes one refusal in; true when it is one too many.
  bool endsTheClaim(std::uint8_t code) {
    if (code == notYet) {
      lastCode_.reset();
      repeats_ = 0;
      return false;
    }
    repeats_ = code == lastCode_ ? repeats_ + 1 : 1;
    lastCode_ = code;
    return repeats_ >= identicalRefusals;
  }

private:
  std::optional<std::uint8_t> lastCode_;
  int repeats_ = 0;
};

/// By its information, or by the read itself.
bool saysNoSuchKey(const hardware::SMCError& error) {
  const auto* refused = std::get_if<hardware::SMCError::Refused>(&error.value);
  return std::holds_alternative<hardware::SMCError::KeyNotFound>(error.value) ||
         (refused != nullptr && refused->result == keyNotFound);
}

} // namespace

Async<std::optional<std::string>> LocalFanController::resolveModeKey(FanID fan) {
  co_await learnModeKey(fan);
  const auto known = modeKeyCache_.find(fan);
  co_return known == modeKeyCache_.end() ? std::nullopt : std::optional(known->second);
}

/// Fills the cache. Returns why that could not even be tried; none, with nothing in the cache, for a fan that
/// has no mode key. Of neither is anything remembered: the next try may succeed.
Async<LocalFanController::ErrorText> LocalFanController::learnModeKey(FanID fan) {
  if (modeKeyCache_.contains(fan) || !fankeys::isNameable(fan)) co_return std::nullopt;
  ErrorText error;
  for (const auto& key : {fankeys::modeFirstChoice(fan), fankeys::modeSecondChoice(fan)}) {
    const auto value = co_await smc_.readValue(key);
    if (value) { // Even one that holds no number says that the key exists.
      modeKeyCache_.insert_or_assign(fan, key);
      co_return std::nullopt;
    }
    if (!saysNoSuchKey(value.error()))
      error = fmt::format("{} does not read ({})", key, value.error().description());
  }
  co_return error;
}

/// `applied`, `timedOut` after 10 seconds, or `rejected` with the code of the fifth identical refusal in
/// a row. It stands down with `reclaimed` once the release generation has passed: no manual mode is written
/// after the fans were handed back. It does the same once nobody wants the fan any more, but where the SMC
/// has accepted by then, the fan is taken.
Async<ControlResult> LocalFanController::claimManualMode(std::string modeKey, Generation generation,
                                                         std::function<bool()> isWanted) {
  const auto isHandedBack = [this, generation] { return generation != releaseGeneration_; };
  const auto standsDown = [&] { return isHandedBack() || !isWanted(); };

  if (standsDown()) co_return ControlResult::reclaimed;
  const auto first = co_await smc_.writeUInt8(modeKey, fankeys::modeManual);
  if (isHandedBack()) co_return ControlResult::reclaimed;
  if (first && *first == 0) co_return ControlResult::applied;
  if (standsDown()) co_return ControlResult::reclaimed;

  co_await smc_.writeUInt8(fankeys::forceTest, 1);
  const runtime::Instant start = clock_.now();
  const auto isOverBudget = [this, start] { return clock_.now() - start >= claimBudget; };
  RefusalCount refusals;
  for (int attempt = 1; !isOverBudget(); ++attempt) {
    if (standsDown()) co_return ControlResult::reclaimed;
    if (attempt % attemptsPerLatch == 0) {
      co_await smc_.writeUInt8(fankeys::forceTest, 1);
      if (standsDown()) co_return ControlResult::reclaimed;
    }
    const auto written = co_await smc_.writeUInt8(modeKey, fankeys::modeManual);
    if (isHandedBack()) co_return ControlResult::reclaimed;
    const std::uint8_t code = written ? *written : driverFailed;
    if (code == 0) co_return ControlResult::applied;
    if (refusals.endsTheClaim(code)) co_return ControlResult::rejected(code);
    co_await clock_.sleep(claimInterval, runtime::StopToken());
  }
  co_return ControlResult::timedOut;
}

} // namespace ventolith::helper
