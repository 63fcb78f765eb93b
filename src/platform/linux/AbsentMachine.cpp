#include "platform/linux/AbsentMachine.h"

#include <unistd.h>

namespace ventolith::platform {

hardware::IOConnect OpenConnections::add() {
  open_.insert(++last_);
  return last_;
}

hardware::KernReturn AbsentUserClient::call(hardware::IOConnect connection, const hardware::SMCParamStruct&,
                                            hardware::SMCParamStruct& output) {
  if (!connections_.contains(connection)) return ioReturnBadArgument;
  output.result = static_cast<std::uint8_t>(hardware::SMCParamStruct::ResultCode::keyNotFound);
  return hardware::kernSuccess;
}

bool GeteuidPrivileges::mayControlFans() const {
  return ::geteuid() == 0;
}

hardware::Machine absentMachine() {
  return {"no fans or sensors found", std::make_unique<AbsentUserClient>(),
          std::make_unique<AbsentHIDBridge>(), std::make_unique<GeteuidPrivileges>()};
}

} // namespace ventolith::platform
