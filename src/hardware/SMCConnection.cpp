#include "hardware/SMCConnection.h"

#include "hardware/FanKeys.h"

#include <algorithm>
#include <utility>

namespace ventolith::hardware {

using runtime::Async;
using Selector = SMCParamStruct::Selector;

namespace {

constexpr auto success = static_cast<std::uint8_t>(SMCParamStruct::ResultCode::success);
constexpr auto keyNotFound = static_cast<std::uint8_t>(SMCParamStruct::ResultCode::keyNotFound);

// Macs have some two thousand keys; an SMC that claims more than this is broken, and is not asked for ever.
constexpr std::int64_t mostKeys = 65536;

SMCParamStruct request(Selector selector) {
  SMCParamStruct block;
  block.data8 = static_cast<std::uint8_t>(selector);
  return block;
}

// Lets a function that needs no waiting run on the owner's executor.
template <class Work>
auto turn(Work work) -> Async<decltype(work())> {
  co_return work();
}

} // namespace

Async<std::optional<SMCError>> SMCConnection::open() {
  return serial_.run(turn([this]() -> std::optional<SMCError> {
    const auto opened = client_.open();
    if (!opened) return opened.error();
    connection_ = *opened;
    return std::nullopt;
  }));
}

Async<void> SMCConnection::close() {
  return serial_.run(turn([this] {
    if (connection_ != 0) client_.close(std::exchange(connection_, 0));
  }));
}

Async<SMCResult<std::uint8_t>> SMCConnection::writeUInt8(std::string key, std::uint8_t value) {
  return serial_.run(turn([this, key = std::move(key), value] { return writeNow(key, encodeUInt8(value)); }));
}

Async<SMCResult<std::uint8_t>> SMCConnection::writeFloat(std::string key, double value) {
  return serial_.run(turn([this, key = std::move(key), value] { return writeNow(key, encodeFloat(value)); }));
}

Async<SMCResult<SMCValue>> SMCConnection::readValue(std::string key) {
  return serial_.run(turn([this, key = std::move(key)] { return readNow(key); }));
}

Async<std::optional<SMCValue>> SMCConnection::tryReadValue(std::string key) {
  return serial_.run(turn([this, key = std::move(key)]() -> std::optional<SMCValue> {
    const auto value = readNow(key);
    return value ? std::optional(*value) : std::nullopt;
  }));
}

Async<std::vector<std::string>> SMCConnection::discoverTempKeys() {
  return serial_.run(turn([this] { return discoverNow(); }));
}

SMCResult<SMCParamStruct> SMCConnection::call(const SMCParamStruct& input) {
  SMCParamStruct output;
  const KernReturn code = client_.call(connection_, input, output);
  if (code == kernSuccess) return output;
  if (code == ioReturnNotPrivileged) return SMCError::notPrivileged();
  return SMCError::ioReturn("IOConnectCallStructMethod", static_cast<std::uint32_t>(code));
}

SMCResult<SMCKeyInfoData> SMCConnection::getKeyInfo(std::uint32_t key) {
  SMCParamStruct input = request(Selector::getKeyInfo);
  input.key = key;
  const auto output = call(input);
  if (!output) return output.error();
  if (output->result == keyNotFound) return SMCError::keyNotFound(unpackKey(key));
  if (output->result != success) return SMCError::smcError(unpackKey(key), output->result);
  return output->keyInfo;
}

SMCResult<SMCValue> SMCConnection::readNow(const std::string& key) {
  const std::uint32_t packed = packKey(key);
  const auto info = getKeyInfo(packed);
  if (!info) return info.error();
  SMCParamStruct input = request(Selector::readKey);
  input.key = packed;
  input.keyInfo.dataSize = info->dataSize;
  const auto output = call(input);
  if (!output) return output.error();
  if (output->result != success) return SMCError::smcError(key, output->result);
  return decodeSMCValue(output->bytes, info->dataSize, info->dataType);
}

SMCResult<std::uint8_t> SMCConnection::writeNow(const std::string& key, const SMCBytes& bytes) {
  const std::uint32_t packed = packKey(key);
  const auto info = getKeyInfo(packed);
  if (!info) return info.error();
  SMCParamStruct input = request(Selector::writeKey);
  input.key = packed;
  input.keyInfo.dataSize = info->dataSize;
  input.keyInfo.dataType = info->dataType;
  input.bytes = bytes;
  const auto output = call(input);
  if (!output) return output.error();
  return output->result; // A refusal is the caller's to judge: the claim depends on the SMC's own code.
}

std::optional<std::string> SMCConnection::keyAt(std::uint32_t index) {
  SMCParamStruct input = request(Selector::getKeyByIndex);
  input.data32 = index;
  const auto output = call(input);
  if (!output || output->result != success) return std::nullopt;
  return unpackKey(output->key);
}

std::vector<std::string> SMCConnection::discoverNow() {
  std::vector<std::string> keys;
  const auto counted = readNow(fankeys::keyCount);
  const auto count = fankeys::truncated(counted ? counted->numeric() : std::nullopt).value_or(0);
  for (std::int64_t index = 0; index < std::min(count, mostKeys); ++index) {
    const auto key = keyAt(static_cast<std::uint32_t>(index));
    if (!key || key->front() != 'T') continue;
    const auto value = readNow(*key);
    if (value && !value->isRaw()) keys.push_back(*key);
  }
  return keys;
}

} // namespace ventolith::hardware
