#include "programs/ventolith/window/QtContext.h"

#include <QElapsedTimer>
#include <QEventLoop>
#include <QTimer>

#include <thread>

namespace ventolith::programs {

namespace {

QElapsedTimer startedWatch() {
  QElapsedTimer watch;
  watch.start();
  return watch;
}

} // namespace

class QtContext::Receiver final : public QObject {
public:
  bool event(QEvent* event) override {
    if (event->type() != Work::type()) return QObject::event(event);
    static_cast<Work*>(event)->run();
    return true;
  }
};

QEvent::Type QtContext::Work::type() {
  static const auto type = static_cast<QEvent::Type>(QEvent::registerEventType());
  return type;
}

QtContext::QtContext() : receiver_(std::make_unique<Receiver>()) {}

QtContext::~QtContext() {
  receiver_.reset(); // With the work that waits for it.
  shutdown();
  destroy();
}

void QtContext::post(std::unique_ptr<Work> work) {
  QCoreApplication::postEvent(receiver_.get(), work.release());
}

void QtContext::endWork() {
  if (--outstanding_ == 0) QCoreApplication::postEvent(receiver_.get(), new QEvent(QEvent::User));
}

void QtContext::runOut(std::chrono::milliseconds longest) {
  const QElapsedTimer watch = startedWatch();
  QTimer end; // Wakes a loop that has nothing else to do.
  end.start(longest);
  while (outstanding_ > 0 && !watch.hasExpired(longest.count()))
    QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents | QEventLoop::ExcludeUserInputEvents);
}

void QtContext::runOutAlone(std::chrono::milliseconds longest) {
  constexpr std::chrono::milliseconds pause{1};
  const QElapsedTimer watch = startedWatch();
  while (outstanding_ > 0 && !watch.hasExpired(longest.count())) {
    QCoreApplication::sendPostedEvents(receiver_.get(), Work::type());
    std::this_thread::sleep_for(pause);
  }
}

} // namespace ventolith::programs
