// The main() of tests that make widgets: an application without a display, a bus or settings of a person's.
#include "ui/kit/Type.h"

#include <QApplication>

#include <gtest/gtest.h>

int main(int count, char** arguments) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  qputenv("VENTOLITH_UI_FONT", "Inter");
  qputenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent");
  qunsetenv("QT_SCALE_FACTOR");
  ::testing::InitGoogleTest(&count, arguments);
  const QApplication application(count, arguments);
  ventolith::ui::applyRequestedFont();
  return RUN_ALL_TESTS();
}
