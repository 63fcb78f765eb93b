// The SMC driver of macOS.
#pragma once

#include "hardware/SMCUserClient.h"

namespace ventolith::platform {

/// The user client of the "AppleSMC" service. Anybody may read through it; the driver refuses writes to all
/// but root.
class AppleSMC final : public hardware::SMCUserClient {
public:
  [[nodiscard]] hardware::SMCResult<hardware::IOConnect> open() override;
  void close(hardware::IOConnect connection) override;
  [[nodiscard]] hardware::KernReturn call(hardware::IOConnect connection,
                                          const hardware::SMCParamStruct& input,
                                          hardware::SMCParamStruct& output) override;
};

} // namespace ventolith::platform
