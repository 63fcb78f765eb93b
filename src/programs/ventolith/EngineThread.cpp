#include "programs/ventolith/EngineThread.h"

namespace ventolith::programs {

EngineThread::EngineThread() = default;

EngineThread::~EngineThread() {
  end();
}

void EngineThread::start() {
  thread_ = std::thread([this] { context_.run(); });
}

void EngineThread::end() {
  if (!thread_.joinable()) return;
  context_.stop();
  thread_.join();
}

} // namespace ventolith::programs
