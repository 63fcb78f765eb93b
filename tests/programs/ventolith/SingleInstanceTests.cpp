// A second start of the application.
#include "programs/ventolith/window/SingleInstance.h"

#include "support/TemporaryFolder.h"

#include <QCoreApplication>
#include <QFile>

#include <gtest/gtest.h>

namespace ventolith::programs {
namespace {

class SingleInstanceTest : public testing::Test {
protected:
  [[nodiscard]] QString address() const { return QString::fromStdString((folder / "instance").string()); }

  support::TemporaryFolder folder;
};

TEST_F(SingleInstanceTest, FirstIsTheOneAndHearsOfTheSecond) {
  SingleInstance first(address());
  int told = 0;
  QObject::connect(&first, &SingleInstance::startedAgain, [&told] { ++told; });
  ASSERT_TRUE(first.claim());
  EXPECT_FALSE(SingleInstance(address()).claim());
  QCoreApplication::processEvents();
  EXPECT_EQ(told, 1);
}

TEST_F(SingleInstanceTest, NextIsTheOneWhenTheFirstHasGone) {
  {
    ASSERT_TRUE(SingleInstance(address()).claim());
  }
  EXPECT_TRUE(SingleInstance(address()).claim());
}

TEST_F(SingleInstanceTest, WhatAKilledOneLeftIsTakenOver) {
  QFile left(address());
  ASSERT_TRUE(left.open(QIODevice::WriteOnly));
  left.close();
  SingleInstance next(address());
  ASSERT_TRUE(next.claim());
  EXPECT_FALSE(SingleInstance(address()).claim());
}

TEST(InstanceAddressTest, IsOneForEachBusOfTheHelper) {
  EXPECT_EQ(instanceAddress({}), instanceAddress({}));
  EXPECT_NE(instanceAddress({}), instanceAddress("unix:path=/tmp/a"));
  EXPECT_NE(instanceAddress("unix:path=/tmp/b"), instanceAddress("unix:path=/tmp/a"));
  EXPECT_EQ(instanceAddress("unix:path=/tmp/a"), instanceAddress("unix:path=/tmp/a"));
}

TEST_F(SingleInstanceTest, WithoutAPlaceToListenEverybodyIsTheOne) {
  const auto nowhere = QString::fromStdString((folder / "no-folder/instance").string());
  EXPECT_TRUE(SingleInstance(nowhere).claim());
  EXPECT_TRUE(SingleInstance(nowhere).claim());
}

} // namespace
} // namespace ventolith::programs
