// Waiting for somebody else, but not for ever.
#pragma once

#include "runtime/Clock.h"

#include <boost/asio/this_coro.hpp>

#include <memory>
#include <optional>
#include <utility>

namespace ventolith::ctl {

/// Longer than any command lasts.
inline constexpr runtime::Duration noLimit = runtime::Duration::max();

namespace detail {

template <class Result>
struct Awaited {
  std::optional<Result> result;
  runtime::StopSource ended;
};

template <class Result>
runtime::Async<void> deliver(std::shared_ptr<Awaited<Result>> awaited, runtime::Async<Result> work) {
  awaited->result.emplace(co_await std::move(work));
  awaited->ended.requestStop();
}

} // namespace detail

/// What `work` gives; none when `limit` is over or `stop` is requested before. The work then goes on, and its
/// result is dropped: whatever it refers to outlives it. It throws nothing.
template <class Result>
runtime::Async<std::optional<Result>> within(runtime::Duration limit, runtime::Clock& clock,
                                             runtime::StopToken stop, runtime::Async<Result> work) {
  if (stop.stopRequested()) co_return std::nullopt;
  const auto awaited = std::make_shared<detail::Awaited<Result>>();
  const auto observation = stop.onStop([&awaited] { awaited->ended.requestStop(); });
  runtime::start(co_await boost::asio::this_coro::executor, "work that may be given up",
                 detail::deliver(awaited, std::move(work)));
  co_await clock.sleep(limit, awaited->ended.token());
  co_return std::move(awaited->result);
}

} // namespace ventolith::ctl
