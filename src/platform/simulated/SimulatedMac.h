// A Mac's firmware in software, below the lowest seam: it takes the same 80-byte blocks as the driver and
// has a hub of temperature sensors.
//
// It owns the machine's whole state: keys, fans, temperatures, the force latch, the faults that are
// switched on, and the script that has yet to happen. Nothing in it waits: whoever calls first lets the
// time pass that has elapsed on the clock since the last call. The same seed and the same calls at the
// same times give the same answers.
//
// Belongs to one thread. Several clients share one machine, each through adaptors of its own
// (SimulatedMachine.h) or through a socket (MachineServer.h).
#pragma once

#include "hardware/SMCUserClient.h"
#include "platform/simulated/Journal.h"
#include "platform/simulated/KeyTable.h"
#include "platform/simulated/Noise.h"
#include "platform/simulated/Script.h"
#include "platform/simulated/SimulatedFan.h"
#include "platform/simulated/ThermalModel.h"
#include "runtime/Clock.h"

#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace ventolith::simulated {

/// The SMC's results, as far as this firmware gives any.
namespace smcresult {
inline constexpr std::uint8_t success = 0;
inline constexpr std::uint8_t keyNotFound = 0x84;
inline constexpr std::uint8_t notReadable = 0x85;
inline constexpr std::uint8_t notWritable = 0x86;
inline constexpr std::uint8_t sizeMismatch = 0x87;
inline constexpr std::uint8_t badArgument = 0x89;
inline constexpr std::uint8_t badIndex = 0xB8;
} // namespace smcresult

/// The driver's results.
inline constexpr auto ioReturnError = static_cast<hardware::KernReturn>(0xE00002BCU);
inline constexpr auto ioReturnNoResources = static_cast<hardware::KernReturn>(0xE00002BEU);
inline constexpr auto ioReturnNotOpen = static_cast<hardware::KernReturn>(0xE00002CDU);

class SimulatedMac {
public:
  /// Starts cool, idle and with the firmware in control. `clock` outlives the machine.
  SimulatedMac(MachineDescription machine, runtime::Clock& clock, std::uint64_t seed);

  // The driver. Connections are numbered 1, 2, 3... and no number is given twice; 256 can be open.
  [[nodiscard]] hardware::SMCResult<hardware::IOConnect> open();
  void close(hardware::IOConnect connection);
  hardware::KernReturn call(hardware::IOConnect connection, const hardware::SMCParamStruct& input,
                            hardware::SMCParamStruct& output);

  // The hub.
  [[nodiscard]] bool hasHub() const { return machine_.hub.has_value(); }
  /// The labels of all services, in order; none at all while the sensors are gone.
  [[nodiscard]] std::vector<std::string> hubLabels();
  /// One sample of the service `index` in degrees Celsius; none if there is no such service. A sensor
  /// that is gone gives not-a-number.
  [[nodiscard]] std::optional<double> sampleHub(std::size_t index);

  // Faults and surroundings, in force at once. Names that the machine does not have are a failure:
  // std::invalid_argument.
  void setLoad(double load); // 0 to 1
  void pinTemperature(const std::string& keyOrLabel, std::optional<double> celsius);
  void refuseWrites(const std::string& key, std::optional<std::uint8_t> result);
  void failDriver(const std::string& key, DriverFailure failure);
  /// The mode reads 3 and the firmware drives the fan, until its mode is written again. For the span of
  /// `insisting` such writes are accepted and do nothing.
  void reclaim(core::FanID fan, runtime::Duration insisting = runtime::Duration::zero());
  void setSensors(SensorState state);
  void removeKey(const std::string& key);
  void restoreKey(const std::string& key);
  /// What the key says of its type; its bytes stay as they are.
  void setKeyType(const std::string& key, std::optional<std::string> type);

  /// Schedules the lines of a script (Script.h). Fails with std::runtime_error, "line 3: ...", and then
  /// schedules none.
  void runScript(std::string_view text);
  /// One line, now unless it has an "at" that is yet to come. Fails with std::runtime_error and then
  /// changes nothing.
  void runLine(std::string_view line);

  /// Is told of every call of the driver from now on; an empty one ends it.
  void setJournal(JournalSink sink) { journal_ = std::move(sink); }

  [[nodiscard]] const MachineDescription& machine() const { return machine_; }
  /// The fans as they are now.
  [[nodiscard]] const std::vector<SimulatedFan>& fans();

private:
  struct Answer {
    std::uint8_t result = smcresult::success;
    hardware::SMCBytes bytes = hardware::zeroSMCBytes;
  };

  void advance();
  void advanceModel(runtime::Instant now);
  void step();
  void schedule(ScriptLine line);
  void applyNow(const ScriptChange& change);
  void apply(const ScriptChange& change);
  void validate(const ScriptChange& change) const;
  [[nodiscard]] TableKey& requireKey(const std::string& key);

  [[nodiscard]] hardware::KernReturn driverStatus(hardware::IOConnect connection,
                                                  const hardware::SMCParamStruct& input) const;
  [[nodiscard]] hardware::SMCParamStruct answer(const hardware::SMCParamStruct& input);
  [[nodiscard]] std::uint8_t describeKey(std::uint32_t name, hardware::SMCKeyInfoData& info) const;
  [[nodiscard]] Answer read(const hardware::SMCParamStruct& input);
  [[nodiscard]] std::uint8_t write(const hardware::SMCParamStruct& input);
  [[nodiscard]] std::uint8_t writeValue(const TableKey& key, std::optional<double> number);
  [[nodiscard]] std::uint8_t writeMode(SimulatedFan& fan, std::optional<double> number);
  [[nodiscard]] std::uint8_t writeLatch(std::optional<double> number);
  [[nodiscard]] bool latchLetsGo() const;
  [[nodiscard]] double numberOf(const TableKey& key);
  void record(hardware::IOConnect connection, const hardware::SMCParamStruct& input,
              const hardware::SMCParamStruct& output, hardware::KernReturn status);

  [[nodiscard]] double temperature(const std::string& name, const SensorDescription& sensor, double noise);
  [[nodiscard]] double firmwareCelsius() const;
  [[nodiscard]] double airflow() const;

  MachineDescription machine_;
  runtime::Clock& clock_;
  runtime::Instant start_;
  runtime::Instant now_;       // Of the call in progress.
  runtime::Instant modelTime_; // Up to where the model has been stepped.

  KeyTable keys_;
  std::vector<SimulatedFan> fans_;
  ThermalModel thermal_;
  std::vector<double> restTemperatures_; // Of the zones at the start, to which the sensors' figures belong.
  Noise noise_;
  std::optional<runtime::Instant> latchedSince_; // While "Ftst" is 1.

  std::set<hardware::IOConnect> connections_;
  hardware::IOConnect lastConnection_ = 0;

  double load_ = 0;
  std::map<std::string, double> pinned_;
  std::map<std::string, std::uint8_t> refusals_;
  std::map<std::string, DriverFailure> driverFailures_;
  SensorState sensors_ = SensorState::working;
  std::vector<double> frozenTemperatures_; // Of the zones when the sensors froze.
  std::multimap<runtime::Instant, ScriptChange> script_;
  JournalSink journal_;
};

} // namespace ventolith::simulated
