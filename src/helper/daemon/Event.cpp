#include "helper/daemon/Event.h"

#include <boost/asio/associated_executor.hpp>
#include <boost/asio/async_result.hpp>
#include <boost/asio/post.hpp>

#include <memory>
#include <utility>

namespace ventolith::helper {

void Event::happen() {
  hasHappened_ = true;
  if (const auto resume = std::exchange(resume_, nullptr)) resume();
}

runtime::Async<void> Event::wait() {
  if (hasHappened_) co_return;
  const auto keep = [this](auto handler) {
    const auto executor = boost::asio::get_associated_executor(handler);
    const auto waiter = std::make_shared<decltype(handler)>(std::move(handler));
    resume_ = [executor, waiter] { boost::asio::post(executor, [waiter] { std::move (*waiter)(); }); };
  };
  co_await boost::asio::async_initiate<const boost::asio::use_awaitable_t<>, void()>(
      keep, boost::asio::use_awaitable);
}

} // namespace ventolith::helper
