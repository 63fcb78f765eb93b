#include "Driver.h"

#include "hardware/SMCResult.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace ventolith::fake {

namespace {

constexpr auto badArgument = static_cast<kern_return_t>(0xE00002C2U);
constexpr mach_port_t thisTask = 0x103;
constexpr io_service_t smcService = 0x1207; // Nothing like a connection's number.
constexpr std::uint32_t theOnlyMethod = 2;
constexpr std::size_t blockSize = 80;

} // namespace

io_service_t Driver::find(mach_port_t mainPort, Object& matching) {
  const std::string name = matching.text;
  Objects::get().release(matching); // Consumed, whatever is found.
  log.push_back("find " + name);
  if (mainPort != kIOMainPortDefault || name != "AppleSMC" || !isLoaded) return 0;
  services_.insert(smcService);
  return smcService;
}

kern_return_t Driver::open(io_service_t service, task_port_t owner, std::uint32_t type,
                           io_connect_t* connect) {
  log.push_back("open type " + std::to_string(type));
  if (!services_.contains(service) || owner != thisTask || type != 0) return badArgument;
  if (openResult) return *openResult;
  const auto opened = mac_->open();
  if (!opened) return simulated::ioReturnNoResources;
  connections_.insert(*opened);
  *connect = *opened;
  return hardware::kernSuccess;
}

kern_return_t Driver::close(io_connect_t connect) {
  log.push_back("close");
  if (connections_.erase(connect) == 0) return badArgument;
  mac_->close(connect);
  return hardware::kernSuccess;
}

kern_return_t Driver::release(io_object_t object) {
  log.push_back("release");
  if (services_.erase(object) != 0) return hardware::kernSuccess;
  Objects::get().complain("IOObjectRelease was given what nobody holds");
  return badArgument;
}

kern_return_t Driver::call(Call call, io_connect_t connect, hardware::SMCParamStruct& output) {
  calls.push_back(call);
  if (callResult) return *callResult;
  if (call.selector != theOnlyMethod || call.inputSize != blockSize || call.outputSize != blockSize)
    return badArgument;
  return mac_->call(connect, call.input, output);
}

} // namespace ventolith::fake

using ventolith::fake::Driver;
using ventolith::fake::Object;
using ventolith::fake::Objects;

extern "C" {

const mach_port_t kIOMainPortDefault = 0;
mach_port_t mach_task_self_ = ventolith::fake::thisTask;

CFMutableDictionaryRef IOServiceMatching(const char* name) {
  return Objects::get().make({.type = "matching", .text = name}).as<CFMutableDictionaryRef>();
}

io_service_t IOServiceGetMatchingService(mach_port_t mainPort, CFDictionaryRef matching) {
  Object* const object = Objects::get().alive(matching, "IOServiceGetMatchingService", "matching");
  return object == nullptr ? 0 : Driver::get().find(mainPort, *object);
}

kern_return_t IOServiceOpen(io_service_t service, task_port_t owner, std::uint32_t type,
                            io_connect_t* connect) {
  return Driver::get().open(service, owner, type, connect);
}

kern_return_t IOServiceClose(io_connect_t connect) {
  return Driver::get().close(connect);
}

kern_return_t IOObjectRelease(io_object_t object) {
  return Driver::get().release(object);
}

kern_return_t IOConnectCallStructMethod(mach_port_t connection, std::uint32_t selector, const void* input,
                                        std::size_t inputSize, void* output, std::size_t* outputSize) {
  ventolith::hardware::SMCParamStruct in;
  ventolith::hardware::SMCParamStruct out;
  std::memcpy(&in, input, std::min(inputSize, sizeof in));
  std::memcpy(&out, output, std::min(*outputSize, sizeof out));
  const auto* const bytes = reinterpret_cast<const unsigned char*>(&out);
  const bool isZero = std::all_of(bytes, bytes + sizeof out, [](unsigned char byte) { return byte == 0; });
  const auto result = Driver::get().call({.selector = selector,
                                          .inputSize = inputSize,
                                          .outputSize = *outputSize,
                                          .input = in,
                                          .outputWasZero = isZero},
                                         connection, out);
  std::memcpy(output, &out, std::min(*outputSize, sizeof out));
  return result;
}

} // extern "C"
