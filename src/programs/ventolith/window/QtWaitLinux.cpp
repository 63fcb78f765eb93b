#include "programs/ventolith/window/QtWait.h"

#include <QSocketNotifier>

#include <utility>

namespace ventolith::programs {

namespace {

class QtWait final : public platform::ReadableWait {
public:
  explicit QtWait(int descriptor) : notifier_(descriptor, QSocketNotifier::Read) {
    notifier_.setEnabled(false);
    QObject::connect(&notifier_, &QSocketNotifier::activated, &notifier_, [this] { end(); });
  }

  void begin(std::function<void()> onReadable) override {
    onReadable_ = std::move(onReadable);
    notifier_.setEnabled(true);
  }
  void cancel() override { notifier_.setEnabled(false); }

private:
  void end() {
    notifier_.setEnabled(false);
    const auto onReadable = std::exchange(onReadable_, nullptr); // It may begin the next wait.
    if (onReadable) onReadable();
  }

  QSocketNotifier notifier_;
  std::function<void()> onReadable_;
};

} // namespace

platform::ReadableWaitFactory waitInQt() {
  return [](int descriptor) { return std::make_unique<QtWait>(descriptor); };
}

} // namespace ventolith::programs
