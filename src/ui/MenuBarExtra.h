// The application in the system's status area: its label there, and the panel that drops from it.
#pragma once

#include "runtime/Clock.h"
#include "ui/MenuBarLabel.h"
#include "ui/StatusItem.h"

#include <memory>
#include <optional>

namespace ventolith::ui {

class MenuBarView;
class Popover;

/// Made once. A press on the label opens the panel beside it; the panel closes on a click outside, on Escape,
/// on a press on the label, and when another program comes to the front. It is made when it is first opened.
class MenuBarExtra final : public QObject {
  Q_OBJECT

public:
  explicit MenuBarExtra(const ViewContext& context, QObject* parent = nullptr);
  /// In another place than this system's.
  MenuBarExtra(const ViewContext& context, std::unique_ptr<StatusItem> item, QObject* parent = nullptr);
  ~MenuBarExtra() override;

  /// Where the desktop has no status area yet, the label appears as soon as there is one.
  void show();
  /// Whether the desktop has a status area now. Where it has none, the window stands in for this.
  [[nodiscard]] bool isInTray() const;

  /// A press on the label: opens the panel, or closes it.
  void toggle();
  [[nodiscard]] bool isOpen() const;

private:
  void presentLabel();
  void makePanel();
  void open();
  void close();
  [[nodiscard]] QRect anchor() const;

  const ViewContext& context_;
  MenuBarLabel label_;
  std::unique_ptr<StatusItem> item_;
  std::unique_ptr<Popover> popover_;
  MenuBarView* panel_ = nullptr; // The popover's.
  std::optional<runtime::Instant> closed_;
};

} // namespace ventolith::ui
