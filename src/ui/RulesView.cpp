#include "ui/RulesView.h"

#include "ui/RuleRow.h"
#include "ui/RulesList.h"
#include "ui/kit/Button.h"
#include "ui/kit/Metrics.h"
#include "ui/kit/Notices.h"
#include "ui/kit/ScrollArea.h"
#include "ui/kit/TextLabel.h"
#include "ui/state/RuleEditing.h"
#include "ui/state/RuleRowContent.h"
#include "ui/state/ScreenLayout.h"

#include <QCoreApplication>
#include <QGridLayout>
#include <QVBoxLayout>

namespace ventolith::ui {

using app::AppModelField;

namespace {

constexpr int ringRoom = 6;         // Above the first card, for the ring of the keyboard around it.
constexpr int belowEmptyState = 78; // It stands a little above the middle of what is free.

} // namespace

RulesView::RulesView(const ViewContext& context, QWidget* parent)
    : ModelView(context, {AppModelField::activePlan, AppModelField::snapshot}, parent) {
  setMinimumWidth(detailMinimumWidth);
  auto* all = new QVBoxLayout(this);
  all->setContentsMargins(0, metrics::screenTop, 0, 0);
  all->setSpacing(0);
  all->addWidget(header());
  makeEmptyState();
  makeList();
  all->addWidget(emptyState_, 1);
  all->addWidget(scroll_, 1);
  refresh({});
}

QWidget* RulesView::header() {
  const RulesTexts texts = rulesTexts();
  newRuleButton_ = new Button(theme(), ButtonKind::prominent, ButtonSize::normal);
  newRuleButton_->setSymbol(Symbol::plus);
  newRuleButton_->setTitle(texts.newRule);
  connect(newRuleButton_, &QAbstractButton::clicked, this, &RulesView::addRule);

  // The button is higher than the title's line, but the line below may pass under it.
  auto* area = new QWidget;
  auto* grid = new QGridLayout(area);
  grid->setContentsMargins(metrics::screenSides, 0, metrics::screenSides, metrics::betweenCards - ringRoom);
  grid->setHorizontalSpacing(metrics::space16);
  grid->setVerticalSpacing(0);
  grid->setColumnStretch(0, 1);
  auto* title = new TextLabel(theme(), TextRole::screenTitle, &Palette::primaryText);
  title->setFit(Fit::elided);
  title->setText(texts.title);
  grid->addWidget(title, 0, 0);
  auto* subtitle = new TextLabel(theme(), TextRole::body, &Palette::secondaryText);
  subtitle->setFit(Fit::wrapped);
  subtitle->setText(texts.subtitle);
  grid->addWidget(subtitle, 1, 0, 1, 2);
  grid->addWidget(newRuleButton_, 0, 1, 2, 1, Qt::AlignTop);
  return area;
}

void RulesView::makeEmptyState() {
  const RulesTexts texts = rulesTexts();
  emptyState_ = new EmptyState(theme(), Symbol::boltClock, this);
  emptyState_->setText(texts.emptyHeading, texts.emptyText);
  emptyState_->setContentsMargins(metrics::screenSides, 0, metrics::screenSides, belowEmptyState);
  createFirstRuleButton_ = new Button(theme(), ButtonKind::bordered, ButtonSize::normal);
  createFirstRuleButton_->setTitle(texts.createFirstRule);
  connect(createFirstRuleButton_, &QAbstractButton::clicked, this, &RulesView::addRule);
  emptyState_->setButton(createFirstRuleButton_);
}

void RulesView::makeList() {
  scroll_ = new ScrollArea(theme(), this);
  rulesList_ = new RulesList(context(), *newRuleButton_);
  rulesList_->setContentsMargins(metrics::screenSides, ringRoom, metrics::screenSides, metrics::screenBottom);
  scroll_->setContent(rulesList_);
  connect(rulesList_, &RulesList::isWorkedOn, this, &RulesView::bringIntoView);
}

QWidget& RulesView::emptyState() {
  return *emptyState_;
}

void RulesView::refresh(Fields) {
  const std::size_t before = rulesList_->rows().size();
  const bool isFromEmptyState = createFirstRuleButton_->hasFocus();
  rulesList_->refresh();
  const std::size_t count = rulesList_->rows().size();
  emptyState_->setVisible(count == 0);
  scroll_->setVisible(count > 0);
  if (count <= before || !isVisible()) return;
  bringIntoView(rulesList_->slot(count - 1));
  if (isFromEmptyState) rulesList_->focusRow(0, Qt::OtherFocusReason);
}

void RulesView::addRule() const {
  model().addRule(newRule());
}

void RulesView::bringIntoView(const QRect& part) {
  // The area knows of another height of its content once it has had the word.
  QCoreApplication::sendPostedEvents(scroll_->viewport(), QEvent::LayoutRequest);
  scroll_->ensureVisible(part.center().x(), part.bottom(), 0, ringRoom);
  scroll_->ensureVisible(part.center().x(), part.top(), 0, ringRoom);
}

} // namespace ventolith::ui
