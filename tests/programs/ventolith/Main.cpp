// The main() of tests of Qt's event loop, which need no display.
#include <QCoreApplication>

#include <gtest/gtest.h>

int main(int count, char** arguments) {
  // On a Mac the loop over the system's own, as it is under a window: Qt's others do not serve the main
  // queue.
  qputenv("QT_EVENT_DISPATCHER_CORE_FOUNDATION", "1");
  ::testing::InitGoogleTest(&count, arguments);
  const QCoreApplication application(count, arguments);
  return RUN_ALL_TESTS();
}
