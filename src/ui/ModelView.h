// What every view of the model is made from.
#pragma once

#include "app/AppModel.h"
#include "app/platform-kit/BundleInfo.h"
#include "runtime/Clock.h"
#include "ui/ModelWatch.h"
#include "ui/kit/Theme.h"

#include <QWidget>

#include <functional>

namespace ventolith::ui {

/// What views are given. Each of them outlives every view.
struct ViewContext {
  app::AppModel& model;
  ModelWatch& watch;
  const Theme& theme;
  const app::BundleInfo& bundle;
  runtime::Executor mainExecutor; // For work of the helper's manager that a view begins.
  runtime::Clock& clock;          // Of the main thread.
  bool hasSupportPage = false;
  std::function<void()> openDashboard; // Brings the application to the front and shows its window.
  std::function<void()> quit;
  QString resourceFolder; // Where the files are that the build is installed with.
};

/// Shows fields of the model and calls its actions. It refreshes only what changed, once for each turn of the
/// event loop, and only while it is seen: whatever happens meanwhile it takes up when it is shown again.
class ModelView : public QWidget {
  Q_OBJECT

public:
  using Fields = ModelWatch::Fields;

  /// Takes up what it missed, before it is shown: for whoever needs its size by then.
  void catchUp();

protected:
  /// Changes of `shown` are what it refreshes for.
  ModelView(const ViewContext& context, Fields shown, QWidget* parent = nullptr);

  /// Shows the present values of `changed`, some of the view's own fields. All of them when it is shown.
  virtual void refresh(Fields changed) = 0;

  [[nodiscard]] const ViewContext& context() const { return context_; }
  [[nodiscard]] app::AppModel& model() const { return context_.model; }
  [[nodiscard]] const Theme& theme() const { return context_.theme; }

  void showEvent(QShowEvent* event) override;

private:
  void take(Fields changed);

  const ViewContext& context_;
  Fields shown_;
  Fields missed_; // While it was not seen.
};

} // namespace ventolith::ui
