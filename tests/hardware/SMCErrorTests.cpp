#include "hardware/SMCValue.h"

#include <gtest/gtest.h>

namespace ventolith::hardware {
namespace {

TEST(SMCError, DescribesEachCaseToTheLetter) {
  struct Row {
    SMCError error;
    const char* description;
  };
  const Row rows[] = {
      {SMCError::openFailed(5), "IOServiceOpen failed: 5"},
      {SMCError::openFailed(static_cast<KernReturn>(0xE00002C1U)), "IOServiceOpen failed: -536870207"},
      {SMCError::keyNotFound("F0Md"), "SMC key not found: F0Md"},
      {SMCError::smcError("F0Tg", 0x82), "SMC error on key F0Tg: result=0x82"},
      {SMCError::smcError("F0Tg", 0xBE), "SMC error on key F0Tg: result=0xbe"},
      {SMCError::smcError("F0Tg", 5), "SMC error on key F0Tg: result=0x5"},
      {SMCError::ioReturn("IOConnectCallStructMethod", 0xE00002C2U),
       "IOConnectCallStructMethod failed: kern_return_t=0xe00002c2"},
      {SMCError::ioReturn("IOConnectCallStructMethod", 0x10),
       "IOConnectCallStructMethod failed: kern_return_t=0x10"},
      {SMCError::driverNotFound(), "AppleSMC IOKit service not found"},
      {SMCError::notPrivileged(), "not privileged (root required) for this SMC call"},
  };
  for (const auto& [error, description] : rows)
    EXPECT_EQ(error.description(), description);
}

TEST(SMCError, CasesOfDifferentKindOrPayloadAreDifferent) {
  EXPECT_NE(SMCError::keyNotFound("F0Md"), SMCError::smcError("F0Md", 132));
  EXPECT_NE(SMCError::keyNotFound("F0Md"), SMCError::keyNotFound("F0md"));
  EXPECT_EQ(SMCError::notPrivileged(), SMCError::notPrivileged());
}

TEST(SMCError, NotPrivilegedHasTheSystemsCode) {
  EXPECT_EQ(static_cast<std::uint32_t>(ioReturnNotPrivileged), 0xE00002C1U);
}

} // namespace
} // namespace ventolith::hardware
