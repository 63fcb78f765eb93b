#include "programs/ventolith/WindowRun.h"

#include "platform/system/SystemClock.h"
#include "platform/system/desktop/InstalledBundle.h"
#include "programs/ventolith/Application.h"
#include "programs/ventolith/EngineThread.h"
#include "programs/ventolith/LastWords.h"
#include "programs/ventolith/window/Display.h"
#include "programs/ventolith/window/OpenedAgain.h"
#include "programs/ventolith/window/ProcessSignals.h"
#include "programs/ventolith/window/QtContext.h"
#include "programs/ventolith/window/QtWait.h"
#include "programs/ventolith/window/SingleInstance.h"
#include "ui/DashboardWindow.h"
#include "ui/MenuBarExtra.h"
#include "ui/ModelWatch.h"
#include "ui/WindowAccessibility.h"
#include "ui/kit/FollowsDesktop.h"
#include "ui/kit/FollowsQt.h"
#include "ui/kit/SystemSymbols.h"
#include "ui/kit/Theme.h"
#include "ui/kit/Type.h"

#include <QApplication>
#include <QIcon>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <stdexcept>

namespace ventolith::programs {

namespace {

QString resourceFolder() {
  return QString::fromStdString(platform::InstalledBundle::resourceFolder().string());
}

/// What is seen, and the application below it. Its members go in no order: the process ends with them.
class Window {
public:
  explicit Window(const Environment& environment)
      : application_({.main = context_.executor(),
                      .mainClock = clock_,
                      .engine = engine_.executor(),
                      .engineClock = engine_.clock()},
                     environment),
        watch_(std::make_unique<ui::ModelWatch>(*application_.model())),
        views_{.model = *application_.model(),
               .watch = *watch_,
               .theme = theme_,
               .bundle = application_.bundle(),
               .mainExecutor = context_.executor(),
               .clock = clock_,
               .hasSupportPage = application_.hasSupportPage(),
               .openDashboard = [this] { window_->open(); },
               .quit = [] { QCoreApplication::quit(); },
               .resourceFolder = resourceFolder()},
        window_(std::make_unique<ui::DashboardWindow>(views_)),
        extra_(std::make_unique<ui::MenuBarExtra>(views_)) {}

  [[noreturn]] void run(ProcessSignals& signals, SingleInstance& instance) {
    QObject::connect(&signals, &ProcessSignals::asked, qApp, &QCoreApplication::quit);
    QObject::connect(&instance, &SingleInstance::startedAgain, window_.get(), &ui::DashboardWindow::open);
    auto openedAgain = whenOpenedAgain([this] { window_->open(); });
    signals.listen();
    engine_.start();
    extra_->show();
    application_.lifecycle().join(application_.model());
    showWindow();
    endWithDisplay();
    QCoreApplication::exec();
    openedAgain.reset();
    end();
  }

private:
  /// Where there is no tray the window stands in for it, and the application ends with it.
  void showWindow() {
    if (!extra_->isInTray())
      QObject::connect(window_.get(), &ui::DashboardWindow::closed, qApp, &QCoreApplication::quit);
    const bool isFirstLaunch = application_.lifecycle().takeFirstLaunch();
    if (isFirstLaunch || !extra_->isInTray()) window_->open();
  }

  /// When the display goes, Qt ends the process by itself, from within its loop.
  void endWithDisplay() {
    running = this;
    std::atexit([] {
      if (running != nullptr) running->endWithoutDisplay();
    });
  }

  /// The fans go back all the same. Whatever would speak with the display is left as it stands.
  [[noreturn]] void endWithoutDisplay() {
    watch_.reset();
    application_.terminate();
    context_.runOutAlone(lastWords);
    static_cast<void>(engine_.end(longestEngineEnd));
    std::fflush(nullptr);
    std::_Exit(EXIT_FAILURE);
  }

  [[noreturn]] void end() {
    running = nullptr;
    extra_.reset();
    window_.reset();
    watch_.reset();
    application_.terminate();
    context_.runOut(lastWords);
    endProcess(engine_.end(longestEngineEnd));
  }

  static inline Window* running = nullptr; // From the first turn of Qt's loop to its last.

  QtContext context_;
  platform::SystemClock clock_{waitInQt()};
  EngineThread engine_;
  ui::Theme theme_{ui::systemSymbols()};
  ui::FollowsQt followsQt_{theme_};
  std::unique_ptr<QObject> followsDesktop_ = ui::followDesktop(theme_);
  Application application_;
  std::unique_ptr<ui::ModelWatch> watch_;
  ui::ViewContext views_;
  std::unique_ptr<ui::DashboardWindow> window_;
  std::unique_ptr<ui::MenuBarExtra> extra_;
};

void requireDisplay(const Environment& environment) {
  if (hasDisplay(environment)) return;
  throw std::runtime_error(
      "there is no display for the window; --headless runs without one, --selftest looks "
      "at the machine");
}

} // namespace

void runWindow(int argumentCount, char** arguments, const Environment& environment) {
  requireDisplay(environment);
  std::signal(SIGPIPE, SIG_IGN); // A reader that went away is a write that fails, and no sudden end.
  ProcessSignals signals;
  ui::installWindowAccessibility();
  QApplication qt(argumentCount, arguments);
  QApplication::setApplicationName(QStringLiteral("Ventolith"));
  QApplication::setDesktopFileName(QStringLiteral("com.ventolith.app")); // By which a desktop finds its icon.
  if (givesOwnIcon()) QApplication::setWindowIcon(QIcon(QStringLiteral(":/ventolith/ventolith.svg")));
  QApplication::setQuitOnLastWindowClosed(false);
  ui::applyRequestedFont();
  SingleInstance instance(instanceAddress(environment("VENTOLITH_BUS")));
  if (!instance.claim()) std::exit(EXIT_SUCCESS);
  Window window(environment);
  window.run(signals, instance); // Takes nothing down in which work that was given up may still wait.
}

} // namespace ventolith::programs
