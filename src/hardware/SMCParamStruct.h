// The 80-byte parameter block of the SMC driver, byte by byte as the driver expects it. Integers are in
// host byte order; `bytes` has the byte order of the key's data type.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace ventolith::hardware {

struct SMCVersion {
  std::uint8_t major = 0;
  std::uint8_t minor = 0;
  std::uint8_t build = 0;
  std::uint8_t reserved = 0;
  std::uint16_t release = 0;
};

struct SMCPLimitData {
  std::uint16_t version = 0;
  std::uint16_t length = 0;
  std::uint32_t cpuPLimit = 0;
  std::uint32_t gpuPLimit = 0;
  std::uint32_t memPLimit = 0;
};

/// Nine bytes of content; packed so that the next field of the block starts at offset 38.
#pragma pack(push, 1)
struct SMCKeyInfoData {
  std::uint32_t dataSize = 0; // The value's length in bytes.
  std::uint32_t dataType = 0; // A packed four-character type name.
  std::uint8_t dataAttributes = 0;
};
#pragma pack(pop)

using SMCBytes = std::array<std::uint8_t, 32>;

/// What `bytes` starts from.
inline constexpr SMCBytes zeroSMCBytes{};

struct SMCParamStruct {
  /// What is asked of the SMC, in `data8`.
  enum class Selector : std::uint8_t {
    ypcEvent = 2, ///< The driver's method index; never put in `data8`.
    readKey = 5,
    writeKey = 6,
    getKeyByIndex = 8,
    getKeyInfo = 9,
  };

  /// In `result`; every other value is an error without a name.
  enum class ResultCode : std::uint8_t {
    success = 0,
    keyNotFound = 132,
  };

  std::uint32_t key = 0; // Packed four characters.
  SMCVersion vers;
  std::uint16_t alignment10 = 0;
  SMCPLimitData pLimitData;
  SMCKeyInfoData keyInfo;
  std::uint8_t alignment37 = 0;
  std::uint16_t padding = 0;
  std::uint8_t result = 0;
  std::uint8_t status = 0;
  std::uint8_t data8 = 0;
  std::uint8_t alignment43 = 0;
  std::uint32_t data32 = 0; // The key's index for getKeyByIndex.
  SMCBytes bytes = zeroSMCBytes;
};

static_assert(sizeof(SMCVersion) == 6);
static_assert(offsetof(SMCVersion, major) == 0);
static_assert(offsetof(SMCVersion, minor) == 1);
static_assert(offsetof(SMCVersion, build) == 2);
static_assert(offsetof(SMCVersion, reserved) == 3);
static_assert(offsetof(SMCVersion, release) == 4);

static_assert(sizeof(SMCPLimitData) == 16);
static_assert(offsetof(SMCPLimitData, version) == 0);
static_assert(offsetof(SMCPLimitData, length) == 2);
static_assert(offsetof(SMCPLimitData, cpuPLimit) == 4);
static_assert(offsetof(SMCPLimitData, gpuPLimit) == 8);
static_assert(offsetof(SMCPLimitData, memPLimit) == 12);

static_assert(sizeof(SMCKeyInfoData) == 9);
static_assert(offsetof(SMCKeyInfoData, dataSize) == 0);
static_assert(offsetof(SMCKeyInfoData, dataType) == 4);
static_assert(offsetof(SMCKeyInfoData, dataAttributes) == 8);

static_assert(sizeof(SMCParamStruct) == 80);
static_assert(offsetof(SMCParamStruct, key) == 0);
static_assert(offsetof(SMCParamStruct, vers) == 4);
static_assert(offsetof(SMCParamStruct, pLimitData) == 12);
static_assert(offsetof(SMCParamStruct, keyInfo) == 28);
static_assert(offsetof(SMCParamStruct, padding) == 38);
static_assert(offsetof(SMCParamStruct, result) == 40);
static_assert(offsetof(SMCParamStruct, status) == 41);
static_assert(offsetof(SMCParamStruct, data8) == 42);
static_assert(offsetof(SMCParamStruct, data32) == 44);
static_assert(offsetof(SMCParamStruct, bytes) == 48);

} // namespace ventolith::hardware
