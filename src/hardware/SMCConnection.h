// The one object that talks to the SMC driver, and the seam through which the fan controller writes.
#pragma once

#include "hardware/SMCUserClient.h"
#include "runtime/Async.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace ventolith::hardware {

/// What the fan controller needs of the SMC.
class SMCWriting {
public:
  SMCWriting() = default;
  SMCWriting(const SMCWriting&) = delete;
  SMCWriting& operator=(const SMCWriting&) = delete;
  virtual ~SMCWriting() = default;

  /// Writes one byte. The value is the SMC's own result byte, 0 for success: a refusal is no failure
  /// here. Fails with SMCError where no write took place: the driver failed, or there is no such key.
  virtual runtime::Async<SMCResult<std::uint8_t>> writeUInt8(std::string key, std::uint8_t value) = 0;
  /// The same, for a number written as a 32-bit float.
  virtual runtime::Async<SMCResult<std::uint8_t>> writeFloat(std::string key, double value) = 0;
  /// The key's value; fails with SMCError, of which keyNotFound says that there is no such key.
  virtual runtime::Async<SMCResult<SMCValue>> readValue(std::string key) = 0;
  /// The key's value, none on any failure.
  virtual runtime::Async<std::optional<SMCValue>> tryReadValue(std::string key) = 0;
};

/// A single-threaded owner of one connection to the driver. Each operation runs to its end in one turn
/// of its executor, so that a query for a key's information and the read or write that follows are never
/// split by another caller. Keys have four characters; any other length stops the process.
class SMCConnection final : public SMCWriting {
public:
  SMCConnection(const runtime::Executor& executor, SMCUserClient& client)
      : serial_(executor), client_(client) {}

  /// Connects. None is success; fails with driverNotFound or openFailed. Does not look at an existing
  /// connection: opening twice leaks the first.
  runtime::Async<std::optional<SMCError>> open();
  /// Harmless on a closed connection. The destructor does not close.
  runtime::Async<void> close();

  runtime::Async<SMCResult<std::uint8_t>> writeUInt8(std::string key, std::uint8_t value) override;
  runtime::Async<SMCResult<std::uint8_t>> writeFloat(std::string key, double value) override;
  runtime::Async<SMCResult<SMCValue>> readValue(std::string key) override;
  runtime::Async<std::optional<SMCValue>> tryReadValue(std::string key) override;

  /// All keys that begin with "T" and hold a number, in the SMC's order; empty if their count cannot be
  /// read. Takes two calls for every key of the machine and two more for each that begins with "T".
  runtime::Async<std::vector<std::string>> discoverTempKeys();

private:
  [[nodiscard]] SMCResult<SMCParamStruct> call(const SMCParamStruct& input);
  [[nodiscard]] SMCResult<SMCKeyInfoData> getKeyInfo(std::uint32_t key);
  [[nodiscard]] SMCResult<SMCValue> readNow(const std::string& key);
  [[nodiscard]] SMCResult<std::uint8_t> writeNow(const std::string& key, const SMCBytes& bytes);
  [[nodiscard]] std::optional<std::string> keyAt(std::uint32_t index);
  [[nodiscard]] std::vector<std::string> discoverNow();

  runtime::SerialExecutor serial_;
  SMCUserClient& client_;
  IOConnect connection_ = 0; // 0 means closed.
};

} // namespace ventolith::hardware
