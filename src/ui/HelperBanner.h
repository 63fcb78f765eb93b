// What the dashboard says, above everything else, of a helper that is missing or out of date.
#pragma once

#include "ui/ModelView.h"
#include "ui/kit/Button.h"
#include "ui/kit/KeyboardPlace.h"
#include "ui/kit/Notices.h"
#include "ui/state/HelperNotice.h"

#include <optional>

namespace ventolith::ui {

/// Seen while there is a notice of its kind. Its button acts.
class HelperBanner final : public Banner {
  Q_OBJECT

public:
  HelperBanner(const ViewContext& context, HelperNotice::Kind kind, QWidget* parent = nullptr);

  /// Of any kind, or none.
  void setNotice(const std::optional<HelperNotice>& notice);

private:
  HelperNotice::Kind kind_;
  Button* button_;
  KeyboardPlace buttonPlace_;
  std::optional<HelperNotice> shown_;
};

} // namespace ventolith::ui
