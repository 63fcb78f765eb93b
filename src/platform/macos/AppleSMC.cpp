#include "platform/macos/AppleSMC.h"

#include <IOKit/IOKitLib.h>

#include <type_traits>

namespace ventolith::platform {

namespace {

using hardware::SMCParamStruct;

static_assert(std::is_same_v<io_connect_t, hardware::IOConnect>);
static_assert(std::is_same_v<kern_return_t, hardware::KernReturn>);
static_assert(static_cast<kern_return_t>(kIOReturnNotPrivileged) == hardware::ioReturnNotPrivileged);

constexpr std::uint32_t userClientType = 0;
constexpr auto methodIndex = static_cast<std::uint32_t>(SMCParamStruct::Selector::ypcEvent);

} // namespace

hardware::SMCResult<hardware::IOConnect> AppleSMC::open() {
  // The description of what is looked for is consumed by the look-up.
  const io_service_t service =
      ::IOServiceGetMatchingService(kIOMainPortDefault, ::IOServiceMatching("AppleSMC"));
  if (service == 0) return hardware::SMCError::driverNotFound();
  io_connect_t connection = 0;
  const kern_return_t code = ::IOServiceOpen(service, mach_task_self_, userClientType, &connection);
  ::IOObjectRelease(service);
  if (code != hardware::kernSuccess) return hardware::SMCError::openFailed(code);
  return connection;
}

void AppleSMC::close(hardware::IOConnect connection) {
  ::IOServiceClose(connection);
}

hardware::KernReturn AppleSMC::call(hardware::IOConnect connection, const SMCParamStruct& input,
                                    SMCParamStruct& output) {
  std::size_t outputSize = sizeof output;
  return ::IOConnectCallStructMethod(connection, methodIndex, &input, sizeof input, &output, &outputSize);
}

} // namespace ventolith::platform
