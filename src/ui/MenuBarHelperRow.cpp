#include "ui/MenuBarHelperRow.h"

#include "ui/HelperActions.h"
#include "ui/KitValues.h"
#include "ui/kit/Metrics.h"

#include <QVBoxLayout>

namespace ventolith::ui {

namespace {

constexpr int symbolSide = 15;
constexpr int symbolGap = 7;

bool isStale(HelperNotice::Kind kind) {
  return kind == HelperNotice::Kind::stale;
}

} // namespace

MenuBarHelperRow::MenuBarHelperRow(const ViewContext& context, HelperNotice::Kind kind, QWidget* parent)
    : QWidget(parent),
      kind_(kind),
      symbol_(new IconView(context.theme, Symbol::boltSlash, symbolSide,
                           isStale(kind) ? &Palette::warning : &Palette::secondaryText, this)),
      title_(new TextLabel(context.theme, TextRole::secondary,
                           isStale(kind) ? &Palette::warning : &Palette::secondaryText, this)),
      text_(new TextLabel(context.theme, TextRole::caption, &Palette::secondaryText, this)),
      button_(new Button(context.theme, ButtonKind::bordered, ButtonSize::small, this)) {
  for (TextLabel* label : {title_, text_})
    label->setFit(Fit::wrapped);
  if (isStale(kind))
    layOutStale();
  else
    layOutInactive();
  connect(button_, &Button::clicked, this, [this, &context] {
    Q_EMIT left();
    repairHelper(kind_, context);
  });
  hide();
}

void MenuBarHelperRow::layOutInactive() {
  text_->hide();
  auto* row = new QHBoxLayout(this);
  row->setContentsMargins(0, 0, 0, 0);
  row->setSpacing(symbolGap);
  row->addWidget(symbol_);
  row->addWidget(title_, 1);
  row->addWidget(button_);
}

void MenuBarHelperRow::layOutStale() {
  auto* label = new QHBoxLayout;
  label->setSpacing(symbolGap);
  label->addWidget(symbol_, 0, Qt::AlignTop);
  label->addWidget(title_, 1);
  auto* repair = new QHBoxLayout;
  repair->setSpacing(metrics::space8);
  repair->addWidget(text_, 1);
  repair->addWidget(button_);
  auto* column = new QVBoxLayout(this);
  column->setContentsMargins(0, 0, 0, 0);
  column->setSpacing(metrics::space6);
  column->addLayout(label);
  column->addLayout(repair);
}

void MenuBarHelperRow::setNotice(const std::optional<HelperNotice>& notice) {
  const bool isOurs = notice && notice->kind == kind_;
  if (isOurs && notice != shown_) {
    symbol_->setSymbol(symbolFor(notice->symbol));
    title_->setText(notice->title);
    text_->setText(notice->text);
    button_->setTitle(notice->buttonTitle);
    button_->setEnabled(notice->isButtonEnabled);
    shown_ = notice;
  }
  setVisible(isOurs);
}

} // namespace ventolith::ui
