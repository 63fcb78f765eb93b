#include "platform/linux/desktop/PowerSupplySource.h"

#include "platform/linux/desktop/PowerSupplyFolder.h"

#include <utility>

namespace ventolith::platform {

PowerSupplySource::PowerSupplySource(runtime::Executor executor, std::filesystem::path folder,
                                     Descriptor kernelEvents)
    : executor_(std::move(executor)), folder_(std::move(folder)), kernelEvents_(std::move(kernelEvents)) {}

void PowerSupplySource::start(std::function<void()> onChange) {
  onChange_ = std::move(onChange);
  events_.emplace(executor_, std::move(kernelEvents_), [this] { readAndTell(); });
  source_ = powerSourceIn(folder_); // What changes from here on is noticed.
}

void PowerSupplySource::stop() {
  events_.reset();
}

void PowerSupplySource::readAndTell() {
  source_ = powerSourceIn(folder_);
  const auto tell = onChange_; // Who is told may let go of this object.
  tell();
}

} // namespace ventolith::platform
