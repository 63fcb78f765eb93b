// A small SMC: keys with a type and the values that they give one read after the other.
#pragma once

#include "hardware/SMCUserClient.h"

#include <bit>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace ventolith::doubles {

using Log = std::vector<std::string>;

struct TableKey {
  std::string type;
  /// The last one stays. None is a read that the SMC refuses.
  std::vector<std::optional<std::vector<std::uint8_t>>> values;
};

[[nodiscard]] inline std::vector<std::uint8_t> singleBytes(double number) {
  const auto bits = std::bit_cast<std::uint32_t>(static_cast<float>(number));
  std::vector<std::uint8_t> bytes;
  for (int shift = 0; shift < 32; shift += 8)
    bytes.push_back(static_cast<std::uint8_t>(bits >> shift));
  return bytes;
}

/// A key of type "flt " that gives `numbers` one after the other.
[[nodiscard]] inline TableKey flt(const std::vector<std::optional<double>>& numbers) {
  TableKey key{"flt ", {}};
  for (const auto& number : numbers)
    key.values.push_back(number ? std::optional(singleBytes(*number)) : std::nullopt);
  return key;
}
[[nodiscard]] inline TableKey flt(double number) {
  return flt(std::vector<std::optional<double>>{number});
}
[[nodiscard]] inline TableKey ui8(std::uint8_t number) {
  return {"ui8 ", {{{number}}}};
}
[[nodiscard]] inline TableKey raw() {
  return {"ch8*", {{{'x'}}}};
}

/// Logs the name of each key that is asked for, and "#<index>" for each query by index.
struct KeyTableSMC final : hardware::SMCUserClient {
  explicit KeyTableSMC(Log& shared) : log(shared) {}

  Log& log;
  std::map<std::string, TableKey> keys;
  std::vector<std::string> order; // By index, for "#KEY" and the queries by index.
  std::optional<hardware::SMCError> openFailure;
  hardware::KernReturn driverCode = hardware::kernSuccess;

  hardware::SMCResult<hardware::IOConnect> open() override {
    log.push_back("open");
    if (openFailure) return *openFailure;
    return 1U;
  }

  void close(hardware::IOConnect) override { log.push_back("close"); }

  hardware::KernReturn call(hardware::IOConnect, const hardware::SMCParamStruct& input,
                            hardware::SMCParamStruct& output) override {
    using Selector = hardware::SMCParamStruct::Selector;
    if (driverCode != hardware::kernSuccess) return driverCode;
    switch (static_cast<Selector>(input.data8)) {
    case Selector::getKeyInfo: describe(input.key, output); break;
    case Selector::readKey: read(input.key, output); break;
    case Selector::getKeyByIndex: nameKey(input.data32, output); break;
    default: output.result = 0x82; break;
    }
    return hardware::kernSuccess;
  }

  /// Makes the keys discoverable in `names`' order.
  void list(std::vector<std::string> names) {
    order = std::move(names);
    keys["#KEY"] = flt(static_cast<double>(order.size()));
  }

private:
  void describe(std::uint32_t packed, hardware::SMCParamStruct& output) {
    const std::string name = hardware::unpackKey(packed);
    log.push_back(name);
    const auto key = keys.find(name);
    if (key == keys.end()) {
      output.result = 132;
      return;
    }
    const auto& value = key->second.values.front();
    output.keyInfo.dataSize = value ? static_cast<std::uint32_t>(value->size()) : 4;
    output.keyInfo.dataType = hardware::packKey(key->second.type);
  }

  void read(std::uint32_t packed, hardware::SMCParamStruct& output) {
    auto& values = keys.at(hardware::unpackKey(packed)).values;
    const auto value = values.front();
    if (values.size() > 1) values.erase(values.begin());
    if (!value) {
      output.result = 0x85;
      return;
    }
    std::copy(value->begin(), value->end(), output.bytes.begin());
  }

  void nameKey(std::uint32_t index, hardware::SMCParamStruct& output) {
    log.push_back("#" + std::to_string(index));
    output.key = hardware::packKey(order.at(index));
  }
};

} // namespace ventolith::doubles
