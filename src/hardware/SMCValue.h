// Keys, typed values and errors of the SMC path.
#pragma once

#include "hardware/SMCParamStruct.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

namespace ventolith::hardware {

/// What a driver call returns: zero, or an IOKit error.
using KernReturn = std::int32_t;
inline constexpr KernReturn kernSuccess = 0;
inline constexpr KernReturn ioReturnNotPrivileged = static_cast<KernReturn>(0xE00002C1U);

/// Packs a key of exactly four bytes, the first into the most significant byte. Any other length is a
/// programming error that stops the process.
[[nodiscard]] std::uint32_t packKey(std::string_view key);
/// The four characters, or "????" where they are not ASCII.
[[nodiscard]] std::string unpackKey(std::uint32_t packed);

/// The decoded value of a key.
struct SMCValue {
  struct Float {
    double value;
    bool operator==(const Float&) const = default;
  };
  struct UInt {
    std::uint32_t value;
    bool operator==(const UInt&) const = default;
  };
  struct FixedPoint {
    double value;
    bool operator==(const FixedPoint&) const = default;
  };
  struct Raw { // A type without a number, or too few bytes for its type.
    bool operator==(const Raw&) const = default;
  };

  std::variant<Float, UInt, FixedPoint, Raw> value;

  [[nodiscard]] bool isRaw() const { return std::holds_alternative<Raw>(value); }
  /// The number, whatever its form; none for a raw value.
  [[nodiscard]] std::optional<double> numeric() const;

  bool operator==(const SMCValue&) const = default;
};

/// Decodes the first `size` bytes (at most 32) by the packed type name `dataType`. Floats are little-
/// endian, integers and fixed-point numbers big-endian. Never fails: what cannot be read is raw.
[[nodiscard]] SMCValue decodeSMCValue(const SMCBytes& bytes, std::uint32_t size, std::uint32_t dataType);

/// The value in byte 0.
[[nodiscard]] SMCBytes encodeUInt8(std::uint8_t value);
/// The value as a 32-bit IEEE-754 single, little-endian, in bytes 0 to 3.
[[nodiscard]] SMCBytes encodeFloat(double value);

/// Why an operation on the SMC failed.
struct SMCError {
  struct OpenFailed {
    KernReturn code;
    bool operator==(const OpenFailed&) const = default;
  };
  struct KeyNotFound {
    std::string key;
    bool operator==(const KeyNotFound&) const = default;
  };
  struct Refused { // The SMC's own result byte.
    std::string key;
    std::uint8_t result;
    bool operator==(const Refused&) const = default;
  };
  struct IOReturn {
    std::string function;
    std::uint32_t code;
    bool operator==(const IOReturn&) const = default;
  };
  struct DriverNotFound {
    bool operator==(const DriverNotFound&) const = default;
  };
  struct NotPrivileged {
    bool operator==(const NotPrivileged&) const = default;
  };

  std::variant<OpenFailed, KeyNotFound, Refused, IOReturn, DriverNotFound, NotPrivileged> value;

  [[nodiscard]] static SMCError openFailed(KernReturn code) { return {OpenFailed{code}}; }
  [[nodiscard]] static SMCError keyNotFound(std::string key) { return {KeyNotFound{std::move(key)}}; }
  [[nodiscard]] static SMCError smcError(std::string key, std::uint8_t result) {
    return {Refused{std::move(key), result}};
  }
  [[nodiscard]] static SMCError ioReturn(std::string function, std::uint32_t code) {
    return {IOReturn{std::move(function), code}};
  }
  [[nodiscard]] static SMCError driverNotFound() { return {DriverNotFound{}}; }
  [[nodiscard]] static SMCError notPrivileged() { return {NotPrivileged{}}; }

  /// The text for the user; numbers in lower-case hexadecimal without padding.
  [[nodiscard]] std::string description() const;

  bool operator==(const SMCError&) const = default;
};

} // namespace ventolith::hardware
