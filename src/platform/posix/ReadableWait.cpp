#include "platform/posix/ReadableWait.h"

#include <boost/asio/posix/stream_descriptor.hpp>

#include <memory>
#include <utility>

namespace ventolith::platform {

namespace {

class AsioWait final : public ReadableWait {
public:
  AsioWait(const runtime::Executor& executor, int descriptor) : descriptor_(executor, descriptor) {}
  ~AsioWait() override { descriptor_.release(); }

  void begin(std::function<void()> onReadable) override {
    onReadable_ = std::make_shared<const std::function<void()>>(std::move(onReadable));
    // A wait that has ended may still be in Asio's queue, where no cancellation finds it: it looks for who
    // waits.
    descriptor_.async_wait(boost::asio::posix::stream_descriptor::wait_read,
                           [waiting = std::weak_ptr(onReadable_)](const boost::system::error_code& error) {
                             const auto present = waiting.lock();
                             if (present && !error) (*present)();
                           });
  }
  void cancel() override {
    onReadable_.reset();
    descriptor_.cancel();
  }

private:
  boost::asio::posix::stream_descriptor descriptor_;        // Another's.
  std::shared_ptr<const std::function<void()>> onReadable_; // Until the cancellation, or the next wait.
};

} // namespace

ReadableWaitFactory waitInAsio(const runtime::Executor& executor) {
  return [executor](int descriptor) { return std::make_unique<AsioWait>(executor, descriptor); };
}

} // namespace ventolith::platform
