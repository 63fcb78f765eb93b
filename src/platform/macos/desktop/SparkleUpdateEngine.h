// The update engine of the platform's custom: the framework Sparkle, which the bundle brings along.
#pragma once

#include "app/UpdateEngine.h"

#include <memory>

namespace ventolith::platform {

/// Started when it is made, on the main thread, whose run loop Sparkle works on: checks of its own go on from
/// then. The delegate is told on whatever thread Sparkle uses.
///
/// A check that is asked for while Sparkle shows one brings that one to the front.
class SparkleUpdateEngine final : public app::UpdateEngine {
public:
  explicit SparkleUpdateEngine(std::shared_ptr<app::UpdateEngineDelegate> delegate);
  ~SparkleUpdateEngine() override;

  void checkForUpdates() override;

private:
  struct Updater;

  std::unique_ptr<Updater> updater_;
};

} // namespace ventolith::platform
