// The one control for checking for updates.
#pragma once

#include "ui/ModelView.h"
#include "ui/kit/Button.h"
#include "ui/state/UpdateCheckButtonState.h"

namespace ventolith::ui {

/// Shows for a while how a check ended. It is as wide as its idle title asks for, so that the shorter words
/// of a result do not make it jump. Its owner, who hears of the model's changes, refreshes it for these
/// fields.
class UpdateCheckButton final : public Button {
  Q_OBJECT

public:
  static constexpr ModelView::Fields fields{app::AppModelField::updateOutcome,
                                            app::AppModelField::updateMessage};

  UpdateCheckButton(const ViewContext& context, ButtonKind kind, QWidget* parent = nullptr);

  /// Takes what the model says now.
  void refresh();

  [[nodiscard]] QSize sizeHint() const override;

private:
  void present();
  void enable(bool isEnabled);

  const app::AppModel& model_;
  UpdateCheckButtonState state_;
  bool hadKeyboard_ = false; // When it was disabled.
};

} // namespace ventolith::ui
