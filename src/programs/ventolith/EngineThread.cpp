#include "programs/ventolith/EngineThread.h"

namespace ventolith::programs {

EngineThread::EngineThread() = default;

EngineThread::~EngineThread() {
  context_.stop();
  if (thread_.joinable()) thread_.join();
}

void EngineThread::start() {
  thread_ = std::thread([this] {
    context_.run();
    ended_.set_value();
  });
}

bool EngineThread::end(std::chrono::milliseconds longest) {
  context_.stop();
  if (!thread_.joinable()) return true;
  if (ended_.get_future().wait_for(longest) == std::future_status::timeout) return false;
  thread_.join();
  return true;
}

} // namespace ventolith::programs
