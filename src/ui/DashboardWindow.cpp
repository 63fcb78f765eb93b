#include "ui/DashboardWindow.h"

#include "ui/kit/Metrics.h"
#include "ui/kit/Presence.h"

#include <QCloseEvent>
#include <QScreen>
#include <QShortcut>
#include <QVBoxLayout>

namespace ventolith::ui {

namespace {

constexpr QSize firstSize(1000, 760);

} // namespace

DashboardWindow::DashboardWindow(const ViewContext& context) : context_(context) {
  setObjectName(QStringLiteral("dashboard"));
  setMinimumSize(metrics::windowMinimumWidth, metrics::windowMinimumHeight);
  resize(firstSize.boundedTo(screen()->availableSize()).expandedTo(minimumSize()));
  auto* all = new QVBoxLayout(this);
  all->setContentsMargins(0, 0, 0, 0);
  // The standard sequences are none on a desktop that Qt does not know.
  connect(new QShortcut(Qt::CTRL | Qt::Key_W, this), &QShortcut::activated, this, &QWidget::close);
  connect(new QShortcut(Qt::CTRL | Qt::Key_Q, this), &QShortcut::activated, this, [&context] {
    if (context.quit) context.quit();
  });
}

DashboardWindow::~DashboardWindow() = default;

void DashboardWindow::open() {
  if (root_ == nullptr) fill();
  setWindowState(windowState() & ~Qt::WindowMinimized);
  presentApplication();
  show();
  raise();
  activateWindow();
}

void DashboardWindow::fill() {
  root_ = new RootView(context_);
  layout()->addWidget(root_);
  setWindowTitle(title(root_->section()));
  connect(root_, &RootView::sectionChanged, this,
          [this](AppSection section) { setWindowTitle(title(section)); });
}

void DashboardWindow::closeEvent(QCloseEvent* event) {
  event->accept();
  hide();
  if (root_ != nullptr) {
    root_->hide();        // It is not to come back with the window.
    root_->deleteLater(); // It may be one of its own that closes the window.
    root_ = nullptr;
  }
  withdrawApplication();
  Q_EMIT closed();
}

} // namespace ventolith::ui
