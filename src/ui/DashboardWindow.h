// The one window of the application.
#pragma once

#include "ui/RootView.h"

namespace ventolith::ui {

/// Its title is that of the screen it shows. While it is closed it holds nothing; it opens anew on the
/// dashboard, in the size and the place that it had.
class DashboardWindow final : public QWidget {
  Q_OBJECT

public:
  explicit DashboardWindow(const ViewContext& context);
  ~DashboardWindow() override;

  /// Brings it to the front, wherever it is: closed, minimised, behind others.
  void open();

Q_SIGNALS:
  void closed();

protected:
  void closeEvent(QCloseEvent* event) override;

private:
  void fill();

  const ViewContext& context_;
  RootView* root_ = nullptr; // None while it is closed.
};

} // namespace ventolith::ui
