// The machine's driver and the SMC behind it.
#include "platform/simulated/SimulatedMac.h"

#include "hardware/FanKeys.h"
#include "platform/simulated/SMCEncoding.h"

#include <algorithm>
#include <utility>

namespace ventolith::simulated {

namespace {

namespace fankeys = hardware::fankeys;
using hardware::KernReturn;
using hardware::SMCParamStruct;
using Kind = KeyMeaning::Kind;
using Operation = JournalEntry::Operation;

constexpr std::size_t mostConnections = 256;

// Of `dataAttributes`.
constexpr std::uint8_t readable = 0x80;
constexpr std::uint8_t writable = 0x40;

bool isSelector(const SMCParamStruct& input, SMCParamStruct::Selector selector) {
  return input.data8 == static_cast<std::uint8_t>(selector);
}

Operation operationOf(const SMCParamStruct& input) {
  if (isSelector(input, SMCParamStruct::Selector::getKeyInfo)) return Operation::info;
  if (isSelector(input, SMCParamStruct::Selector::readKey)) return Operation::read;
  if (isSelector(input, SMCParamStruct::Selector::writeKey)) return Operation::write;
  if (isSelector(input, SMCParamStruct::Selector::getKeyByIndex)) return Operation::index;
  return Operation::unknown;
}

std::vector<std::uint8_t> firstBytes(const SMCParamStruct& block, std::uint32_t size) {
  const auto length = std::min<std::size_t>(size, block.bytes.size());
  return {block.bytes.begin(), block.bytes.begin() + static_cast<std::ptrdiff_t>(length)};
}

} // namespace

hardware::SMCResult<hardware::IOConnect> SimulatedMac::open() {
  if (connections_.size() >= mostConnections) return hardware::SMCError::openFailed(ioReturnNoResources);
  connections_.insert(++lastConnection_);
  return lastConnection_;
}

void SimulatedMac::close(hardware::IOConnect connection) {
  connections_.erase(connection);
}

KernReturn SimulatedMac::call(hardware::IOConnect connection, const SMCParamStruct& input,
                              SMCParamStruct& output) {
  advance();
  const KernReturn status = driverStatus(connection, input);
  output = status == hardware::kernSuccess ? answer(input) : SMCParamStruct{};
  if (journal_) record(connection, input, output, status);
  return status;
}

KernReturn SimulatedMac::driverStatus(hardware::IOConnect connection, const SMCParamStruct& input) const {
  if (!connections_.contains(connection)) return ioReturnNotOpen;
  const Operation operation = operationOf(input);
  if (operation == Operation::index || operation == Operation::unknown) return hardware::kernSuccess;
  const auto fault = driverFailures_.find(hardware::unpackKey(input.key));
  if (fault == driverFailures_.end() || fault->second == DriverFailure::none) return hardware::kernSuccess;
  if (fault->second == DriverFailure::writes && operation != Operation::write) return hardware::kernSuccess;
  return ioReturnError;
}

SMCParamStruct SimulatedMac::answer(const SMCParamStruct& input) {
  SMCParamStruct output;
  switch (operationOf(input)) {
  case Operation::info: output.result = describeKey(input.key, output.keyInfo); break;
  case Operation::read: {
    const Answer value = read(input);
    output.result = value.result;
    output.bytes = value.bytes;
    break;
  }
  case Operation::write: output.result = write(input); break;
  case Operation::index: {
    const TableKey* const key = keys_.at(input.data32);
    output.result = key == nullptr ? smcresult::badIndex : smcresult::success;
    output.key = key == nullptr ? 0 : hardware::packKey(key->description.name);
    break;
  }
  case Operation::unknown: output.result = smcresult::badArgument; break;
  }
  return output;
}

std::uint8_t SimulatedMac::describeKey(std::uint32_t name, hardware::SMCKeyInfoData& info) const {
  const TableKey* const key = keys_.find(name);
  if (key == nullptr) return smcresult::keyNotFound;
  if (key->description.readResult != smcresult::success) return key->description.readResult;
  info.dataSize = key->description.size;
  info.dataType = hardware::packKey(key->claimedType.value_or(key->description.type));
  info.dataAttributes = static_cast<std::uint8_t>(readable | (key->meaning.isWritable() ? writable : 0));
  return smcresult::success;
}

// Reading

SimulatedMac::Answer SimulatedMac::read(const SMCParamStruct& input) {
  const TableKey* const key = keys_.find(input.key);
  if (key == nullptr) return {.result = smcresult::keyNotFound};
  const KeyDescription& description = key->description;
  if (description.readResult != smcresult::success) return {.result = description.readResult};
  if (input.keyInfo.dataSize != description.size) return {.result = smcresult::sizeMismatch};
  if (key->meaning.kind == Kind::constant) return {.bytes = description.bytes};
  if (key->meaning.kind == Kind::temperature && sensors_ == SensorState::gone) {
    return {.result = smcresult::notReadable};
  }
  return {.bytes = encodeNumber(description.type, numberOf(*key)).value_or(hardware::zeroSMCBytes)};
}

double SimulatedMac::numberOf(const TableKey& key) {
  constexpr double noise = 0.05; // Degrees Celsius, either way.
  const std::size_t fan = key.meaning.fan;
  switch (key.meaning.kind) {
  case Kind::constant: break;
  case Kind::keyCount: return static_cast<double>(keys_.count());
  case Kind::fanCount: return static_cast<double>(fans_.size());
  case Kind::forceTest: return latchedSince_ ? 1 : 0;
  case Kind::fanMeasured: return fans_[fan].speed();
  case Kind::fanMinimum: return fans_[fan].description().minimum;
  case Kind::fanMaximum: return fans_[fan].description().maximum;
  case Kind::fanTarget: return fans_[fan].target();
  case Kind::fanMode: return fans_[fan].mode();
  case Kind::temperature: {
    // What is pinned reads as exactly that: keys need not differ from sample to sample.
    const std::string& name = key.description.name;
    return temperature(name, *key.description.sensor, pinned_.contains(name) ? 0 : noise);
  }
  }
  return 0;
}

// Writing

std::uint8_t SimulatedMac::write(const SMCParamStruct& input) {
  const TableKey* const key = keys_.find(input.key);
  if (key == nullptr) return smcresult::keyNotFound;
  if (input.keyInfo.dataSize != key->description.size) return smcresult::sizeMismatch;
  const auto refusal = refusals_.find(key->description.name);
  if (refusal != refusals_.end()) return refusal->second;
  if (!key->meaning.isWritable()) return smcresult::notWritable;
  const KeyDescription& description = key->description;
  const auto type = hardware::packKey(description.type);
  return writeValue(*key, hardware::decodeSMCValue(input.bytes, description.size, type).numeric());
}

std::uint8_t SimulatedMac::writeValue(const TableKey& key, std::optional<double> number) {
  if (!number) return smcresult::badArgument;
  if (key.meaning.kind == Kind::forceTest) return writeLatch(number);
  SimulatedFan& fan = fans_[key.meaning.fan];
  if (key.meaning.kind == Kind::fanMode) return writeMode(fan, number);
  fan.setTarget(*number);
  return smcresult::success;
}

std::uint8_t SimulatedMac::writeMode(SimulatedFan& fan, std::optional<double> number) {
  // A fan can be given back at any time; only taking one needs the latch.
  if (number == fankeys::modeAutomatic) {
    fan.setMode(fankeys::modeAutomatic, now_);
    return smcresult::success;
  }
  if (number != fankeys::modeManual) return smcresult::badArgument;
  if (!latchLetsGo()) return machine_.latch.refusal;
  fan.setMode(fankeys::modeManual, now_);
  return smcresult::success;
}

std::uint8_t SimulatedMac::writeLatch(std::optional<double> number) {
  if (number != 0) {
    if (!latchedSince_) latchedSince_ = now_;
    return smcresult::success;
  }
  // The firmware takes back what was held by the latch.
  if (latchedSince_) {
    for (SimulatedFan& fan : fans_) {
      if (fan.mode() == fankeys::modeManual) fan.setMode(fankeys::modeAutomatic, now_);
    }
  }
  latchedSince_.reset();
  return smcresult::success;
}

bool SimulatedMac::latchLetsGo() const {
  if (!machine_.latch.isNeeded) return true;
  return latchedSince_ && now_ - *latchedSince_ >= machine_.latch.delay;
}

// Journal

void SimulatedMac::record(hardware::IOConnect connection, const SMCParamStruct& input,
                          const SMCParamStruct& output, KernReturn status) {
  JournalEntry entry{
      .seconds = runtime::toSeconds(now_ - start_),
      .client = connection,
      .operation = operationOf(input),
      .key = {},
      .bytes = {},
      .result = output.result,
      .isDriverFailure = status != hardware::kernSuccess,
  };
  if (entry.isDriverFailure) entry.result = status;
  const bool hasAnswer = !entry.isDriverFailure && output.result == smcresult::success;
  if (entry.operation == Operation::index) {
    if (hasAnswer) entry.key = hardware::unpackKey(output.key);
  } else {
    entry.key = hardware::unpackKey(input.key);
  }
  if (entry.operation == Operation::write) entry.bytes = firstBytes(input, input.keyInfo.dataSize);
  if (entry.operation == Operation::read && hasAnswer)
    entry.bytes = firstBytes(output, input.keyInfo.dataSize);
  journal_(entry);
}

} // namespace ventolith::simulated
