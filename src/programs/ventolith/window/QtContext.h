// Qt's event loop as an executor of Asio's.
#pragma once

#include <boost/asio/execution.hpp>
#include <boost/asio/execution_context.hpp>

#include <QCoreApplication>
#include <QEvent>
#include <QObject>

#include <atomic>
#include <chrono>
#include <cstdint>
#include <memory>
#include <type_traits>
#include <utility>

namespace ventolith::programs {

class QtExecutor;

/// The event loop of the thread that makes it. Work may come from every thread, runs in the order in which it
/// came, and goes unrun with this object. Stands beside the application object, and outlives all that refers
/// to its executor.
class QtContext : public boost::asio::execution_context {
public:
  QtContext();
  ~QtContext();

  [[nodiscard]] QtExecutor executor();

  /// Runs the loop until nothing that was begun on the executor is left, or `longest` has passed.
  void runOut(std::chrono::milliseconds longest);
  /// The same without the rest of the loop: where the display is gone, Qt's loop would end the process.
  void runOutAlone(std::chrono::milliseconds longest);

private:
  friend class QtExecutor;

  class Work : public QEvent {
  public:
    Work() : QEvent(type()) {}
    virtual void run() = 0;
    static QEvent::Type type();
  };
  template <class Function>
  class WorkOf final : public Work {
  public:
    explicit WorkOf(Function function) : function_(std::move(function)) {}
    void run() override { std::move(function_)(); }

  private:
    Function function_;
  };
  class Receiver;

  void post(std::unique_ptr<Work> work);
  void beginWork() { ++outstanding_; }
  void endWork();

  std::unique_ptr<Receiver> receiver_;
  std::atomic<std::int64_t> outstanding_ = 0;
};

/// Never runs anything inside `execute`.
class QtExecutor {
  template <class Function>
  static constexpr bool isWork = std::is_invocable_v<std::decay_t<Function>&&>;
  using Tracking = boost::asio::execution::outstanding_work_t;

public:
  explicit QtExecutor(QtContext& context) : QtExecutor(context, false) {}
  QtExecutor(const QtExecutor& other) noexcept : QtExecutor(*other.context_, other.isTracked_) {}
  QtExecutor& operator=(const QtExecutor& other) noexcept {
    QtExecutor copy(other);
    std::swap(context_, copy.context_);
    std::swap(isTracked_, copy.isTracked_);
    return *this;
  }
  ~QtExecutor() {
    if (isTracked_) context_->endWork();
  }

  template <class Function>
    requires isWork<Function>
  void execute(Function&& function) const {
    context_->post(
        std::make_unique<QtContext::WorkOf<std::decay_t<Function>>>(std::forward<Function>(function)));
  }

  [[nodiscard]] boost::asio::execution_context& query(boost::asio::execution::context_t) const noexcept {
    return *context_;
  }
  [[nodiscard]] static constexpr boost::asio::execution::blocking_t
  query(boost::asio::execution::blocking_t) noexcept {
    return boost::asio::execution::blocking.never;
  }
  [[nodiscard]] Tracking query(Tracking) const noexcept {
    return isTracked_ ? Tracking(Tracking::tracked) : Tracking(Tracking::untracked);
  }
  [[nodiscard]] QtExecutor require(boost::asio::execution::blocking_t::never_t) const { return *this; }
  [[nodiscard]] QtExecutor require(Tracking::tracked_t) const { return {*context_, true}; }
  [[nodiscard]] QtExecutor require(Tracking::untracked_t) const { return {*context_, false}; }

  bool operator==(const QtExecutor& other) const noexcept { return context_ == other.context_; }

private:
  QtExecutor(QtContext& context, bool isTracked) noexcept : context_(&context), isTracked_(isTracked) {
    if (isTracked_) context_->beginWork();
  }

  QtContext* context_;
  bool isTracked_; // Counts as work that is not done yet.
};

inline QtExecutor QtContext::executor() {
  return QtExecutor(*this);
}

} // namespace ventolith::programs
