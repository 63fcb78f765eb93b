// A place in a status area that only takes note of what it is shown.
#pragma once

#include "ui/StatusItem.h"

namespace ventolith::ui {

class StatusItemDouble final : public StatusItem {
public:
  void setLabel(const StatusItemLabel& given) override {
    label = given;
    ++labelsGiven;
  }
  void show() override { isShowing = true; }
  [[nodiscard]] bool isShown() const override { return isShowing; }
  [[nodiscard]] QRect place() const override { return at; }

  StatusItemLabel label;
  int labelsGiven = 0;
  bool isShowing = false;
  QRect at;
};

} // namespace ventolith::ui
