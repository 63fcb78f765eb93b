#include "platform/linux/desktop/UPowerSource.h"

#include "platform/linux/service/BusConnection.h"
#include "runtime/StopToken.h"

#include <boost/asio/post.hpp>
#include <fmt/format.h>

#include <algorithm>
#include <cstdint>
#include <map>
#include <utility>
#include <vector>

namespace ventolith::platform {

using app::PowerSource;

namespace {

constexpr const char* service = "org.freedesktop.UPower";
constexpr const char* properties = "org.freedesktop.DBus.Properties";

/// An object of UPower's, and the one interface of it that matters here.
struct Object {
  const char* path;
  const char* interface;
};
constexpr Object daemon{"/org/freedesktop/UPower", "org.freedesktop.UPower"};
constexpr Object displayDevice{"/org/freedesktop/UPower/devices/DisplayDevice",
                               "org.freedesktop.UPower.Device"};

constexpr std::uint32_t uninterruptibleSupply = 3; // Of the property "Type".

enum class Absent { startIt, leaveIt };

/// What PropertiesChanged carries.
struct Changes {
  std::map<std::string, sdbus::Variant> values;
  std::vector<std::string> invalidated; // Changed, and to be asked for.

  template <class Value>
  [[nodiscard]] std::optional<Value> value(const std::string& name) const {
    const auto found = values.find(name);
    if (found == values.end() || !found->second.containsValueOfType<Value>()) return std::nullopt;
    return found->second.get<Value>();
  }
  [[nodiscard]] bool invalidates(const std::string& name) const {
    return std::ranges::find(invalidated, name) != invalidated.end();
  }
};

} // namespace

class UPowerSource::Watch : public std::enable_shared_from_this<Watch> {
public:
  Watch(runtime::Executor executor, MakeFallback makeFallback, std::function<void()> onChange)
      : executor_(std::move(executor)),
        makeFallback_(std::move(makeFallback)),
        onChange_(std::move(onChange)) {}

  void begin(const std::optional<std::string>& busAddress);
  void end();
  [[nodiscard]] PowerSource current() const;

private:
  using Handler = void (Watch::*)(const Changes& changes);

  void listen();
  [[nodiscard]] BusMatch onChanges(const Object& object, Handler handler);
  void daemonChanged(const Changes& changes);
  void displayDeviceChanged(const Changes& changes);
  void ownerChanged(const std::string& owner);
  void busLost();

  void ask(Absent absent);
  static runtime::Async<void> askUPower(std::shared_ptr<Watch> self, std::uint64_t question, Absent absent);
  template <class Value>
  static runtime::Async<std::optional<Value>> property(std::shared_ptr<Watch> self, Object object,
                                                       const char* name, Absent absent);
  [[nodiscard]] bool isCurrent(std::uint64_t question) const;

  void answered(bool isOnBattery);
  void fallBack();
  void useFallback();
  void tell() const;

  runtime::Executor executor_;
  MakeFallback makeFallback_;
  std::function<void()> onChange_;
  runtime::StopSource stopped_;
  std::unique_ptr<app::PowerSourceProvider> fallback_; // While UPower does not answer.

  bool isUPowerKnown_ = false; // Whether these are the present UPower's.
  bool isOnBattery_ = false;
  bool isUninterruptible_ = false; // Of the supply that stands for all.

  std::uint64_t questions_ = 0; // Answers to all but the latest come too late.
  std::shared_ptr<BusConnection> connection_;
  runtime::StopObservation loss_;
  BusMatch daemonMatch_;
  BusMatch displayDeviceMatch_;
  BusMatch ownerMatch_;
};

void UPowerSource::Watch::begin(const std::optional<std::string>& busAddress) {
  useFallback();
  auto connection = BusConnection::open(executor_, busAddress);
  if (!connection) return;
  connection_ = std::move(connection.value());
  listen();
  ask(Absent::startIt);
}

void UPowerSource::Watch::end() {
  stopped_.requestStop();
  daemonMatch_ = {};
  displayDeviceMatch_ = {};
  ownerMatch_ = {};
  loss_ = {};
  connection_.reset();
  if (fallback_) fallback_->stop();
}

PowerSource UPowerSource::Watch::current() const {
  if (!isUPowerKnown_) return fallback_ ? fallback_->current() : PowerSource::unknown;
  if (!isOnBattery_) return PowerSource::ac;
  return isUninterruptible_ ? PowerSource::unknown : PowerSource::battery;
}

void UPowerSource::Watch::listen() {
  const std::weak_ptr<Watch> weak = weak_from_this();
  daemonMatch_ = onChanges(daemon, &Watch::daemonChanged);
  displayDeviceMatch_ = onChanges(displayDevice, &Watch::displayDeviceChanged);
  ownerMatch_ = connection_->matchOwner(service, [weak](const std::string& owner) {
    if (const auto self = weak.lock()) self->ownerChanged(owner);
  });
  // The loss may be noticed in the middle of anything.
  loss_ = connection_->lost().onStop([weak, executor = executor_] {
    boost::asio::post(executor, [weak] {
      if (const auto self = weak.lock()) self->busLost();
    });
  });
}

BusMatch UPowerSource::Watch::onChanges(const Object& object, Handler handler) {
  const std::string rule =
      fmt::format("type='signal',sender='{}',path='{}',interface='{}',member='PropertiesChanged',arg0='{}'",
                  service, object.path, properties, object.interface);
  return connection_->match(rule, [weak = weak_from_this(), handler](sdbus::Message& signal) {
    std::string interface;
    Changes changes;
    if (!readBody(signal, interface, changes.values, changes.invalidated)) return;
    if (const auto self = weak.lock()) (self.get()->*handler)(changes);
  });
}

void UPowerSource::Watch::daemonChanged(const Changes& changes) {
  if (changes.invalidates("OnBattery")) return ask(Absent::leaveIt);
  const auto isOnBattery = changes.value<bool>("OnBattery");
  if (!isOnBattery) return; // Such as the lid's.
  isOnBattery_ = *isOnBattery;
  if (isUPowerKnown_) tell();
}

void UPowerSource::Watch::displayDeviceChanged(const Changes& changes) {
  const auto type = changes.value<std::uint32_t>("Type");
  if (type) isUninterruptible_ = *type == uninterruptibleSupply;
  if (isUPowerKnown_) tell();
}

void UPowerSource::Watch::ownerChanged(const std::string& owner) {
  ++questions_;
  fallBack();
  if (!owner.empty() && !stopped_.stopRequested()) ask(Absent::leaveIt);
}

void UPowerSource::Watch::busLost() {
  if (stopped_.stopRequested()) return;
  ++questions_;
  fallBack();
}

void UPowerSource::Watch::ask(Absent absent) {
  runtime::start(executor_, "the question where power comes from",
                 askUPower(shared_from_this(), ++questions_, absent));
}

/// The kind of supply first: until both are known nothing is told, and what changes in between is heard.
runtime::Async<void> UPowerSource::Watch::askUPower(std::shared_ptr<Watch> self, std::uint64_t question,
                                                    Absent absent) {
  if (!self->isCurrent(question)) co_return;
  const auto type = co_await property<std::uint32_t>(self, displayDevice, "Type", absent);
  if (!self->isCurrent(question)) co_return;
  self->isUninterruptible_ = type == uninterruptibleSupply;
  const auto isOnBattery = co_await property<bool>(self, daemon, "OnBattery", Absent::leaveIt);
  if (!self->isCurrent(question) || !isOnBattery) co_return;
  self->answered(*isOnBattery);
}

void UPowerSource::Watch::answered(bool isOnBattery) {
  const PowerSource before = current();
  const bool isAboutChange = std::exchange(isUPowerKnown_, true); // Asked for a value that was invalidated.
  isOnBattery_ = isOnBattery;
  fallback_.reset();
  if (isAboutChange || current() != before) tell();
}

template <class Value>
runtime::Async<std::optional<Value>> UPowerSource::Watch::property(std::shared_ptr<Watch> self, Object object,
                                                                   const char* name, Absent absent) {
  const std::shared_ptr<BusConnection> connection = self->connection_;
  sdbus::MethodCall call = connection->newCall(
      {.destination = service, .path = object.path, .interface = properties, .name = "Get"});
  if (absent == Absent::leaveIt) leaveServiceUnstarted(call);
  call << object.interface << name;
  BusResult<BusReply> reply = co_await connection->call(std::move(call), self->stopped_.token());
  sdbus::Variant value;
  if (!reply || !reply->read(value) || !value.containsValueOfType<Value>()) co_return std::nullopt;
  co_return value.get<Value>();
}

bool UPowerSource::Watch::isCurrent(std::uint64_t question) const {
  return question == questions_ && !stopped_.stopRequested();
}

void UPowerSource::Watch::fallBack() {
  if (!isUPowerKnown_) return;
  const PowerSource before = current();
  isUPowerKnown_ = false;
  useFallback();
  if (current() != before) tell();
}

void UPowerSource::Watch::useFallback() {
  fallback_ = makeFallback_();
  fallback_->start([weak = weak_from_this()] {
    if (const auto self = weak.lock()) self->tell();
  });
}

void UPowerSource::Watch::tell() const {
  if (!stopped_.stopRequested()) onChange_();
}

UPowerSource::UPowerSource(runtime::Executor executor, std::optional<std::string> busAddress,
                           MakeFallback makeFallback)
    : executor_(std::move(executor)),
      busAddress_(std::move(busAddress)),
      makeFallback_(std::move(makeFallback)) {}

UPowerSource::~UPowerSource() {
  stop();
}

void UPowerSource::start(std::function<void()> onChange) {
  watch_ = std::make_shared<Watch>(executor_, makeFallback_, std::move(onChange));
  watch_->begin(busAddress_);
}

void UPowerSource::stop() {
  if (watch_) watch_->end();
}

PowerSource UPowerSource::current() const {
  return watch_ ? watch_->current() : PowerSource::unknown;
}

} // namespace ventolith::platform
