#include "platform/posix/ReadableWait.h"

#include <boost/asio/posix/stream_descriptor.hpp>

#include <utility>

namespace ventolith::platform {

namespace {

class AsioWait final : public ReadableWait {
public:
  AsioWait(const runtime::Executor& executor, int descriptor) : descriptor_(executor, descriptor) {}
  ~AsioWait() override { descriptor_.release(); }

  void begin(std::function<void()> onReadable) override {
    descriptor_.async_wait(boost::asio::posix::stream_descriptor::wait_read,
                           [onReadable = std::move(onReadable)](const boost::system::error_code& error) {
                             if (!error) onReadable();
                           });
  }
  void cancel() override { descriptor_.cancel(); }

private:
  boost::asio::posix::stream_descriptor descriptor_; // Another's.
};

} // namespace

ReadableWaitFactory waitInAsio(const runtime::Executor& executor) {
  return [executor](int descriptor) { return std::make_unique<AsioWait>(executor, descriptor); };
}

} // namespace ventolith::platform
