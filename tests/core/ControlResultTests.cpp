#include "core/ControlContract.h"

#include <gtest/gtest.h>

#include <limits>

namespace ventolith::core {
namespace {

struct Row {
  ControlResult result;
  std::int64_t code;
  std::string_view text;
};

const Row payloadFree[] = {
    {ControlResult::applied, 0, "applied"},
    {ControlResult::acquiring, 1, "acquiring"},
    {ControlResult::timedOut, 2, "timedOut"},
    {ControlResult::reclaimed, 3, "reclaimed"},
    {ControlResult::notPrivileged, 5, "notPrivileged"},
    {ControlResult::noHelper, 6, "noHelper"},
};

TEST(ControlResult, PayloadFreeCasesCrossTheLinkUnchanged) {
  for (const Row& row : payloadFree) {
    SCOPED_TRACE(row.text);
    EXPECT_EQ(row.result.xpcCode(), row.code);
    EXPECT_EQ(ControlResult::fromXPCCode(row.code), row.result);
  }
}

TEST(ControlResult, PayloadsDoNotTravel) {
  EXPECT_EQ(ControlResult::rejected(0).xpcCode(), 4);
  EXPECT_EQ(ControlResult::rejected(255).xpcCode(), 4);
  EXPECT_EQ(ControlResult::failed("").xpcCode(), 7);
  EXPECT_EQ(ControlResult::failed("any text").xpcCode(), 7);
}

TEST(ControlResult, RejectedArrivesWithCodeZero) {
  EXPECT_EQ(ControlResult::fromXPCCode(4), ControlResult::rejected(0));
  EXPECT_NE(ControlResult::fromXPCCode(4), ControlResult::rejected(5));
}

TEST(ControlResult, CodeWithoutACaseArrivesAsAFailureThatNamesIt) {
  constexpr auto lowest = std::numeric_limits<std::int64_t>::min();
  EXPECT_EQ(ControlResult::fromXPCCode(7), ControlResult::failed("xpc: unrecognized result code 7"));
  EXPECT_EQ(ControlResult::fromXPCCode(-1), ControlResult::failed("xpc: unrecognized result code -1"));
  EXPECT_EQ(ControlResult::fromXPCCode(8), ControlResult::failed("xpc: unrecognized result code 8"));
  EXPECT_EQ(ControlResult::fromXPCCode(256), ControlResult::failed("xpc: unrecognized result code 256"));
  EXPECT_EQ(ControlResult::fromXPCCode(lowest),
            ControlResult::failed("xpc: unrecognized result code -9223372036854775808"));
}

TEST(ControlResult, EqualityIsOfCaseAndPayload) {
  EXPECT_EQ(ControlResult::rejected(5), ControlResult::rejected(5));
  EXPECT_NE(ControlResult::rejected(5), ControlResult::rejected(6));
  EXPECT_EQ(ControlResult::failed("a"), ControlResult::failed("a"));
  EXPECT_NE(ControlResult::failed("a"), ControlResult::failed("b"));
  EXPECT_NE(ControlResult::failed("applied"), ControlResult::applied);
  EXPECT_NE(ControlResult::timedOut, ControlResult::reclaimed);
}

TEST(ControlResult, TextIsTheCaseNameAndItsPayload) {
  for (const Row& row : payloadFree)
    EXPECT_EQ(row.result.text(), row.text);
  EXPECT_EQ(ControlResult::rejected(5).text(), "rejected(code: 5)");
  EXPECT_EQ(ControlResult::rejected(132).text(), "rejected(code: 132)");
  EXPECT_EQ(ControlResult::failed("x").text(), "failed(\"x\")");
}

} // namespace
} // namespace ventolith::core
