#include "ui/StatusItem.h"

#include <QPixmap>
#include <QSignalSpy>
#include <QSystemTrayIcon>

#include <gtest/gtest.h>

#include <memory>

namespace ventolith::ui {
namespace {

class StatusItemTrayTest : public testing::Test {
protected:
  [[nodiscard]] QSystemTrayIcon& tray() const { return *item->findChild<QSystemTrayIcon*>(); }

  std::unique_ptr<StatusItem> item = makeStatusItem();
};

TEST_F(StatusItemTrayTest, EitherButtonOfThePointerIsAPress) {
  const QSignalSpy presses(item.get(), &StatusItem::pressed);
  Q_EMIT tray().activated(QSystemTrayIcon::Trigger);
  EXPECT_EQ(presses.count(), 1);
  Q_EMIT tray().activated(QSystemTrayIcon::Context);
  EXPECT_EQ(presses.count(), 2);
}

TEST_F(StatusItemTrayTest, WhatComesWithAPressIsNoPressOfItsOwn) {
  const QSignalSpy presses(item.get(), &StatusItem::pressed);
  Q_EMIT tray().activated(QSystemTrayIcon::DoubleClick);
  Q_EMIT tray().activated(QSystemTrayIcon::MiddleClick);
  EXPECT_EQ(presses.count(), 0);
}

TEST_F(StatusItemTrayTest, ShowsThePictureAndSaysItsMeaning) {
  QPixmap picture(22, 22);
  picture.fill(Qt::red);
  const QIcon icon(picture);
  item->setLabel({.text = QStringLiteral("82"), .picture = icon, .meaning = QStringLiteral("Ventolith: 82")});
  EXPECT_EQ(tray().icon().cacheKey(), icon.cacheKey());
  EXPECT_EQ(tray().toolTip().toStdString(), "Ventolith: 82");
}

TEST_F(StatusItemTrayTest, WithoutAStatusAreaItIsNotShown) {
  item->show(); // This platform has none.
  EXPECT_FALSE(item->isShown());
}

} // namespace
} // namespace ventolith::ui
