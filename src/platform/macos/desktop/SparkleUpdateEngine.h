// The update engine that is customary on a Mac: the framework Sparkle, which the bundle brings along.
#pragma once

#include "app/UpdateEngine.h"

#include <memory>

namespace ventolith::platform {

/// Started when it is made: checks of its own go on from then. Made, used and let go of on the main thread,
/// where Sparkle works, and tells the delegate.
///
/// A check that is asked for while Sparkle shows one brings that one to the front. Where Sparkle could not
/// start it says so itself, and a check that is asked for is never answered.
///
/// An update that is installed ends this application in order, and so gives the fans back, before the bundle
/// is replaced. The helper of the old build stays: it is asked to end by the new application.
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
