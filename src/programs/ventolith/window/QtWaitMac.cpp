#include "programs/ventolith/window/QtWait.h"

#include "programs/ventolith/window/MainQueueReads.h"

#include <optional>
#include <utility>

namespace ventolith::programs {

namespace {

class QtWait final : public platform::ReadableWait {
public:
  explicit QtWait(int descriptor) : descriptor_(descriptor) {}

  void begin(std::function<void()> onReadable) override {
    onReadable_ = std::move(onReadable);
    reads_.emplace(descriptor_, [this] { end(); });
  }
  void cancel() override { reads_.reset(); }

private:
  void end() {
    reads_.reset();
    const auto onReadable = std::exchange(onReadable_, nullptr); // It may begin the next wait.
    if (onReadable) onReadable();
  }

  int descriptor_; // Another's.
  std::function<void()> onReadable_;
  std::optional<MainQueueReads> reads_;
};

} // namespace

platform::ReadableWaitFactory waitInQt() {
  return [](int descriptor) { return std::make_unique<QtWait>(descriptor); };
}

} // namespace ventolith::programs
