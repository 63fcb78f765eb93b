#include "platform/macos/desktop/UserDefaults.h"

#include "MacTest.h"
#include "fake/Preferences.h"

#include <map>
#include <string>

namespace ventolith::platform {
namespace {

constexpr const char* openedKey = "com.ventolith.hasOpenedOnFirstLaunch";

class UserDefaultsTest : public MacTest {
protected:
  fake::Preferences preferences_;
  UserDefaults defaults_;
};

TEST_F(UserDefaultsTest, TheWindowHasNotOpenedWhereNothingIsSet) {
  EXPECT_FALSE(defaults_.hasOpenedOnFirstLaunch());
}

TEST_F(UserDefaultsTest, WhatIsSetIsOnDiskAtOnceAndReadAnew) {
  defaults_.setHasOpenedOnFirstLaunch(true);
  EXPECT_EQ(preferences_.onDisk, (std::map<std::string, bool>{{openedKey, true}}));
  EXPECT_TRUE(defaults_.hasOpenedOnFirstLaunch());

  preferences_.set[openedKey] = false;
  EXPECT_FALSE(defaults_.hasOpenedOnFirstLaunch());
}

TEST_F(UserDefaultsTest, ItCanBeUnset) {
  preferences_.set[openedKey] = true;
  defaults_.setHasOpenedOnFirstLaunch(false);
  EXPECT_FALSE(defaults_.hasOpenedOnFirstLaunch());
}

} // namespace
} // namespace ventolith::platform
