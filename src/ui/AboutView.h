// The screen "About": who the application is, the check for updates, support, and the notices.
#pragma once

#include "ui/ModelView.h"

namespace ventolith::ui {

class Card;
class UpdateCheckButton;

class AboutView final : public ModelView {
  Q_OBJECT

public:
  explicit AboutView(const ViewContext& context, QWidget* parent = nullptr);

protected:
  void refresh(Fields changed) override;

private:
  [[nodiscard]] Card* makeIdentityCard() const;
  [[nodiscard]] Card* makeLinksCard();

  UpdateCheckButton* update_;
};

} // namespace ventolith::ui
