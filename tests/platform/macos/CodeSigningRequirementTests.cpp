#include "platform/macos/service/CodeSigningRequirement.h"

#include <gtest/gtest.h>

namespace {

using ventolith::platform::clientRequirement;
using ventolith::platform::teamRequirement;

TEST(CodeSigningRequirement, AdmitsTheTwoClientsOfTheTeam) {
  EXPECT_EQ(clientRequirement("AB12CD34EF"),
            "anchor apple generic and certificate leaf[subject.OU] = \"AB12CD34EF\" and "
            "(identifier \"com.ventolith.app\" or identifier \"com.ventolith.ctl\")");
}

TEST(CodeSigningRequirement, OfTheTeamAloneNamesNoProgram) {
  EXPECT_EQ(teamRequirement("AB12CD34EF"),
            "anchor apple generic and certificate leaf[subject.OU] = \"AB12CD34EF\"");
}

TEST(CodeSigningRequirement, IsNoneForWhatIsNoTeam) {
  for (const char* const text : {"", "AB12CD34E", "AB12CD34EFG", "ab12cd34ef", "AB12 CD34E", "A\" or true",
                                 "\" or \"a\"=", "AB12CD34E\n",
                                 "\xC3\x84"
                                 "B12CD34"}) {
    EXPECT_EQ(teamRequirement(text), std::nullopt) << text;
    EXPECT_EQ(clientRequirement(text), std::nullopt) << text;
  }
}

} // namespace
