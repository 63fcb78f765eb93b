// An SMC that answers anything at all: whole snapshots are taken of it, and single values decoded.
#include "hardware/SensorReader.h"
#include "runtime/ManualClock.h"

#include <cmath>
#include <cstdlib>
#include <cstring>

using namespace ventolith;

namespace {

/// Answers each call with the next bytes of the input, over and over.
class BabblingSMC final : public hardware::SMCUserClient {
public:
  BabblingSMC(const std::uint8_t* data, std::size_t size) : data_(data), size_(size) {}

  hardware::SMCResult<hardware::IOConnect> open() override { return hardware::IOConnect{1}; }
  void close(hardware::IOConnect) override {}

  hardware::KernReturn call(hardware::IOConnect, const hardware::SMCParamStruct& input,
                            hardware::SMCParamStruct& output) override {
    std::array<std::uint8_t, sizeof(output)> bytes{};
    for (std::uint8_t& byte : bytes)
      byte = next();
    std::memcpy(&output, bytes.data(), bytes.size());
    // Mostly successes, so that what comes after is reached; and few keys, so that an input is fast.
    if (output.result >= 8) output.result = 0;
    if (input.key == hardware::packKey("#KEY")) output.bytes[0] = output.bytes[1] = output.bytes[2] = 0;
    return output.padding == 0xFFFF ? -1 : 0;
  }

private:
  std::uint8_t next() { return data_[place_++ % size_]; }

  const std::uint8_t* data_;
  std::size_t size_;
  std::size_t place_ = 0;
};

/// No hub.
struct NoHub final : hardware::HIDBridge {
  bool isAvailable() const override { return false; }
  std::optional<Discovery> discoverLabeledTemperatureServices() override { return std::nullopt; }
  std::optional<double> sampleTemperature(const Service&) override { return std::nullopt; }
};

void decodeOne(const std::uint8_t* data, std::size_t size) {
  hardware::SMCBytes bytes = hardware::zeroSMCBytes;
  std::uint32_t header[2] = {};
  if (size < sizeof(header)) return;
  std::memcpy(header, data, sizeof(header));
  std::memcpy(bytes.data(), data + sizeof(header), std::min(size - sizeof(header), bytes.size()));
  const auto value = hardware::decodeSMCValue(bytes, header[0], header[1]);
  if (value.isRaw() == value.numeric().has_value()) std::abort();
}

void expectSane(const core::SensorSnapshot& snapshot) {
  if (snapshot.fans.size() > 10) std::abort();
  for (const core::TempSensor& sensor : snapshot.temps) {
    if (!(sensor.celsius >= -40 && sensor.celsius <= 150)) std::abort();
  }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  decodeOne(data, size);

  boost::asio::io_context context(1);
  runtime::ManualClock clock(context);
  BabblingSMC smc(data, size);
  NoHub hub;
  hardware::SMCConnection connection(context.get_executor(), smc);
  hardware::SensorReader reader(context.get_executor(), connection, hub, clock, [](const std::string&) {});
  clock.run(connection.open());
  expectSane(clock.run(reader.snapshot()));
  return 0;
}
