#include "hardware/SMCValue.h"

#include "core/Visitor.h"

#include <fmt/format.h>

#include <algorithm>
#include <bit>
#include <cstdio>
#include <cstdlib>

namespace ventolith::hardware {

using core::Visitor;

namespace {

std::uint32_t bigEndian(const SMCBytes& bytes, std::size_t count) {
  std::uint32_t value = 0;
  for (std::size_t place = 0; place < count; ++place)
    value = value << 8 | bytes[place];
  return value;
}

double littleEndianFloat(const SMCBytes& bytes) {
  std::uint32_t bits = 0;
  for (std::size_t place = 4; place-- > 0;)
    bits = bits << 8 | bytes[place];
  return static_cast<double>(std::bit_cast<float>(bits));
}

} // namespace

std::uint32_t packKey(std::string_view key) {
  if (key.size() != 4) {
    std::fprintf(stderr, "ventolith: an SMC key has four bytes, \"%.*s\" has %zu\n",
                 static_cast<int>(key.size()), key.data(), key.size());
    std::abort();
  }
  std::uint32_t packed = 0;
  for (const char character : key)
    packed = packed << 8 | static_cast<std::uint8_t>(character);
  return packed;
}

std::string unpackKey(std::uint32_t packed) {
  std::string key;
  for (int shift = 24; shift >= 0; shift -= 8) {
    const auto byte = static_cast<std::uint8_t>(packed >> shift);
    if (byte > 0x7F) return "????";
    key += static_cast<char>(byte);
  }
  return key;
}

std::optional<double> SMCValue::numeric() const {
  return std::visit(Visitor{
                        [](const Float& number) { return std::optional(number.value); },
                        [](const UInt& number) { return std::optional(static_cast<double>(number.value)); },
                        [](const FixedPoint& number) { return std::optional(number.value); },
                        [](const Raw&) { return std::optional<double>(); },
                    },
                    value);
}

SMCValue decodeSMCValue(const SMCBytes& bytes, std::uint32_t size, std::uint32_t dataType) {
  const std::size_t length = std::min<std::size_t>(size, bytes.size());
  const std::string type = unpackKey(dataType);
  if (type == "flt " && length >= 4) return {SMCValue::Float{littleEndianFloat(bytes)}};
  if (type == "ui8 " && length >= 1) return {SMCValue::UInt{bytes[0]}};
  if (type == "ui16" && length >= 2) return {SMCValue::UInt{bigEndian(bytes, 2)}};
  if (type == "ui32" && length >= 4) return {SMCValue::UInt{bigEndian(bytes, 4)}};
  if (type == "fpe2" && length >= 2) return {SMCValue::FixedPoint{bigEndian(bytes, 2) / 4.0}};
  if (type == "sp78" && length >= 2) {
    return {SMCValue::FixedPoint{static_cast<std::int16_t>(bigEndian(bytes, 2)) / 256.0}};
  }
  return {SMCValue::Raw{}};
}

SMCBytes encodeUInt8(std::uint8_t value) {
  SMCBytes bytes = zeroSMCBytes;
  bytes[0] = value;
  return bytes;
}

SMCBytes encodeFloat(double value) {
  SMCBytes bytes = zeroSMCBytes;
  const auto bits = std::bit_cast<std::uint32_t>(static_cast<float>(value));
  for (std::size_t place = 0; place < 4; ++place)
    bytes[place] = static_cast<std::uint8_t>(bits >> (8 * place));
  return bytes;
}

std::string SMCError::description() const {
  return std::visit(
      Visitor{
          [](const OpenFailed& error) { return fmt::format("IOServiceOpen failed: {}", error.code); },
          [](const KeyNotFound& error) { return fmt::format("SMC key not found: {}", error.key); },
          [](const Refused& error) {
            return fmt::format("SMC error on key {}: result=0x{:x}", error.key, error.result);
          },
          [](const IOReturn& error) {
            return fmt::format("{} failed: kern_return_t=0x{:x}", error.function, error.code);
          },
          [](const DriverNotFound&) { return std::string("AppleSMC IOKit service not found"); },
          [](const NotPrivileged&) {
            return std::string("not privileged (root required) for this SMC call");
          },
      },
      value);
}

} // namespace ventolith::hardware
