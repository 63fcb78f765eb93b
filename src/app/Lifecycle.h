// The application's beginning and end, as far as they are not drawn.
#pragma once

#include "app/AppModel.h"
#include "app/UserSettings.h"

#include <memory>
#include <utility>

namespace ventolith::app {

/// Hears that the application starts and ends. Lives on the main executor.
class Lifecycle {
public:
  explicit Lifecycle(std::unique_ptr<UserSettings> settings) : settings_(std::move(settings)) {}

  /// The model's first view is there. Until then an end of the application sends nothing.
  void join(const std::shared_ptr<AppModel>& model) { model_ = model; }

  /// Whether the window opens by itself now: once in the life of a user's account. The flag is set before it
  /// opens, so that what goes wrong in between does not repeat it.
  [[nodiscard]] bool takeFirstLaunch();

  /// The application ends in order, by its quit entry, a signal or the end of the session. They may come
  /// together: the fans are given back once. Nothing waits.
  void applicationWillTerminate();

private:
  std::unique_ptr<UserSettings> settings_;
  std::weak_ptr<AppModel> model_;
};

} // namespace ventolith::app
