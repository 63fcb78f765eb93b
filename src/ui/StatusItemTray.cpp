#include "ui/StatusItem.h"

#include <QSystemTrayIcon>

namespace ventolith::ui {
namespace {

/// Holds the tray's icon as a child.
class TrayItem final : public StatusItem {
public:
  TrayItem() : tray_(new QSystemTrayIcon(this)) {
    connect(tray_, &QSystemTrayIcon::activated, this, [this](QSystemTrayIcon::ActivationReason reason) {
      const bool isPress = reason == QSystemTrayIcon::Trigger || reason == QSystemTrayIcon::Context;
      if (isPress) Q_EMIT pressed();
    });
  }

  void setLabel(const StatusItemLabel& label) override {
    tray_->setIcon(label.picture);
    tray_->setToolTip(label.meaning);
  }
  void show() override { tray_->show(); }
  [[nodiscard]] bool isShown() const override {
    return tray_->isVisible() && QSystemTrayIcon::isSystemTrayAvailable();
  }
  [[nodiscard]] QRect place() const override { return tray_->geometry(); }

private:
  QSystemTrayIcon* tray_;
};

} // namespace

std::unique_ptr<StatusItem> makeStatusItem() {
  return std::make_unique<TrayItem>();
}

} // namespace ventolith::ui
