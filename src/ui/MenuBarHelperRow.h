// What the menu bar's panel says of a helper that is missing or out of date.
#pragma once

#include "ui/ModelView.h"
#include "ui/kit/Button.h"
#include "ui/kit/IconView.h"
#include "ui/kit/TextLabel.h"
#include "ui/state/HelperNotice.h"

#include <optional>

namespace ventolith::ui {

/// Seen while there is a notice of its kind. Its button acts.
class MenuBarHelperRow final : public QWidget {
  Q_OBJECT

public:
  MenuBarHelperRow(const ViewContext& context, HelperNotice::Kind kind, QWidget* parent = nullptr);

  /// Of any kind, or none.
  void setNotice(const std::optional<HelperNotice>& notice);

Q_SIGNALS:
  /// Its button was pressed: the system may ask the user for leave, in a window of its own.
  void left();

private:
  void layOutInactive();
  void layOutStale();

  HelperNotice::Kind kind_;
  std::optional<HelperNotice> shown_;
  IconView* symbol_;
  TextLabel* title_;
  TextLabel* text_;
  Button* button_;
};

} // namespace ventolith::ui
