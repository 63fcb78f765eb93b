// The lowest seam of the SMC path: the driver's user client. What lies below is the platform, or
// software that behaves like it.
#pragma once

#include "hardware/SMCParamStruct.h"
#include "hardware/SMCResult.h"

#include <cstdint>

namespace ventolith::hardware {

/// An open connection to the driver; 0 is none.
using IOConnect = std::uint32_t;

class SMCUserClient {
public:
  SMCUserClient() = default;
  SMCUserClient(const SMCUserClient&) = delete;
  SMCUserClient& operator=(const SMCUserClient&) = delete;
  virtual ~SMCUserClient() = default;

  /// Opens one more connection. Fails with driverNotFound or openFailed.
  [[nodiscard]] virtual SMCResult<IOConnect> open() = 0;

  virtual void close(IOConnect connection) = 0;

  /// One call of the driver's method: 80 bytes in, 80 bytes out, synchronous. `output` comes in zeroed.
  /// Returns the driver's own result; the SMC's stands in `output.result`. A connection that is not
  /// open is refused by the driver like any other bad argument.
  [[nodiscard]] virtual KernReturn call(IOConnect connection, const SMCParamStruct& input,
                                        SMCParamStruct& output) = 0;
};

} // namespace ventolith::hardware
