// Views of a model among doubles, in virtual time, without motion.
#pragma once

#include "app/ModelFixture.h"
#include "ui/ModelView.h"

#include <QCoreApplication>
#include <QEvent>

#include <optional>

namespace ventolith::ui {

/// Views are made after `begin`, and go before the fixture's own members: a test keeps them in its body.
class ViewTest : public app::AppModelTest {
protected:
  ViewTest() { theme.force({.reduceMotion = true}); }
  ~ViewTest() override { helper::HelperManager::reportHelperStale(false); }

  /// Starts the model, which has read the machine once then, and makes what its views are given.
  void begin() {
    start();
    makeContext();
  }
  void beginWithHelper() {
    registration->status = app::DaemonStatus::enabled;
    begin();
  }

  void makeContext() {
    watch.emplace(*model);
    context.emplace(ViewContext{.model = *model,
                                .watch = *watch,
                                .theme = theme,
                                .bundle = bundle,
                                .mainExecutor = time.executor(),
                                .clock = time.clock,
                                .hasSupportPage = supportURL.has_value(),
                                .openDashboard = [this] { ++dashboardsOpened; },
                                .quit = [this] { ++quits; },
                                .resourceFolder = resourceFolder});
  }

  /// Lets happen what is due, and the views take it up.
  void turn() {
    settle();
    for (int step = 0; step < 3; ++step) { // What is shown anew is laid out, and then painted.
      QCoreApplication::processEvents();
      QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
    settle();
  }
  /// The machine reads as `next` from now on, and the model has taken that up.
  void read(core::SensorSnapshot next) {
    readings.next = std::move(next);
    pass(5);
    turn();
  }

  Theme theme;
  std::optional<ModelWatch> watch;
  std::optional<ViewContext> context;
  QString resourceFolder = QStringLiteral("/nonexistent");
  int dashboardsOpened = 0;
  int quits = 0;
};

} // namespace ventolith::ui
