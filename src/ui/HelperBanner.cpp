#include "ui/HelperBanner.h"

#include "ui/HelperActions.h"

namespace ventolith::ui {

namespace {

bool isStale(HelperNotice::Kind kind) {
  return kind == HelperNotice::Kind::stale;
}

} // namespace

HelperBanner::HelperBanner(const ViewContext& context, HelperNotice::Kind kind, QWidget* parent)
    : Banner(context.theme, isStale(kind) ? Banner::Kind::warning : Banner::Kind::neutral,
             isStale(kind) ? Symbol::refreshAlert : Symbol::boltSlash, parent),
      kind_(kind),
      button_(new Button(context.theme, isStale(kind) ? ButtonKind::bordered : ButtonKind::prominent,
                         ButtonSize::normal)),
      buttonPlace_(*button_) {
  setButton(button_, isStale(kind) ? ButtonPlace::below : ButtonPlace::beside);
  connect(button_, &Button::clicked, this, [this, &context] { repairHelper(kind_, context); });
  hide();
}

void HelperBanner::setNotice(const std::optional<HelperNotice>& notice) {
  const bool isOurs = notice && notice->kind == kind_;
  if (isOurs && notice != shown_) {
    setText(notice->title, notice->text);
    button_->setTitle(notice->buttonTitle);
    buttonPlace_.setEnabled(notice->isButtonEnabled);
    shown_ = notice;
  }
  setVisible(isOurs);
}

} // namespace ventolith::ui
