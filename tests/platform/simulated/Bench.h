// A simulated machine on a clock that the test moves, with one client.
#pragma once

#include "hardware/SMCConnection.h"
#include "platform/simulated/SimulatedMachine.h"
#include "runtime/ManualClock.h"

#include <boost/asio/io_context.hpp>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace ventolith::simulated {

using hardware::SMCParamStruct;

inline SMCParamStruct block(SMCParamStruct::Selector selector, std::string_view key, std::uint32_t size = 0) {
  SMCParamStruct input;
  input.key = hardware::packKey(key);
  input.keyInfo.dataSize = size;
  input.data8 = static_cast<std::uint8_t>(selector);
  return input;
}

struct Bench {
  explicit Bench(std::string_view machine, std::uint64_t seed = 1)
      : mac(makeSimulatedMac(machine, clock, seed)), client(smcClient(mac)), connection(*client->open()) {}

  hardware::KernReturn call(const SMCParamStruct& input) {
    output = SMCParamStruct{};
    return client->call(connection, input, output);
  }

  /// The result byte of a write.
  std::uint8_t write(std::string_view key, const hardware::SMCBytes& bytes, std::uint32_t size) {
    SMCParamStruct input = block(SMCParamStruct::Selector::writeKey, key, size);
    input.bytes = bytes;
    call(input);
    return output.result;
  }
  std::uint8_t writeByte(std::string_view key, std::uint8_t value) {
    return write(key, hardware::encodeUInt8(value), 1);
  }
  std::uint8_t writeSpeed(std::string_view key, double rpm) {
    return write(key, hardware::encodeFloat(rpm), 4);
  }

  /// The key's number; none if the key cannot be read or has no number.
  std::optional<double> read(std::string_view key) {
    if (call(block(SMCParamStruct::Selector::getKeyInfo, key)) != 0 || output.result != 0)
      return std::nullopt;
    const auto info = output.keyInfo;
    if (call(block(SMCParamStruct::Selector::readKey, key, info.dataSize)) != 0) return std::nullopt;
    if (output.result != 0) return std::nullopt;
    return hardware::decodeSMCValue(output.bytes, info.dataSize, info.dataType).numeric();
  }

  /// Lets time pass as it does in life: the machine is looked at now and then.
  void pass(double seconds) { clock.advance(runtime::fromSeconds(seconds)); }

  boost::asio::io_context context;
  runtime::ManualClock clock{context};
  std::shared_ptr<SimulatedMac> mac;
  std::unique_ptr<hardware::SMCUserClient> client;
  hardware::IOConnect connection;
  SMCParamStruct output;
};

/// A machine whose fan can be taken at once, for tests of what comes after.
struct MiniBench : Bench {
  MiniBench() : Bench("mac-mini") {}
};

} // namespace ventolith::simulated
