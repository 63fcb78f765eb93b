#include "app/Lifecycle.h"

namespace ventolith::app {

bool Lifecycle::takeFirstLaunch() {
  if (settings_->hasOpenedOnFirstLaunch()) return false;
  settings_->setHasOpenedOnFirstLaunch(true);
  return true;
}

void Lifecycle::applicationWillTerminate() {
  const auto model = model_.lock();
  model_.reset();
  if (model) model->restoreAutoOnQuit();
}

} // namespace ventolith::app
