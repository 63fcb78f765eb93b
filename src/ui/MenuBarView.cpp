#include "ui/MenuBarView.h"

#include "ui/FanControlBlock.h"
#include "ui/HelperActions.h"
#include "ui/KitValues.h"
#include "ui/MenuBarActionRow.h"
#include "ui/MenuBarHeader.h"
#include "ui/MenuBarHelperRow.h"
#include "ui/PresetMenu.h"
#include "ui/kit/MenuButton.h"
#include "ui/kit/Metrics.h"
#include "ui/kit/ScrollArea.h"

#include <QEvent>
#include <QVBoxLayout>

#include <algorithm>
#include <utility>

namespace ventolith::ui {

using enum app::AppModelField;

namespace {

constexpr ModelView::Fields ofHeader{snapshot, activePlan, presets, activePresetID};
constexpr ModelView::Fields ofChips{snapshot};
constexpr ModelView::Fields ofFans{snapshot,     activePlan,   presets,      activePresetID,
                                   fanSliderRPM, draggingFans, controlState, isHelperActive};
constexpr ModelView::Fields ofHelper{isHelperActive, helperManager};
constexpr ModelView::Fields ofUpdates = UpdateCheckButton::fields;
constexpr ModelView::Fields ofAll = ofHeader | ofChips | ofFans | ofHelper | ofUpdates;

constexpr int stroke = 1; // Of the panel, within its width.
constexpr int sides = 14;
constexpr int betweenFans = 14;

bool touches(ModelView::Fields changed, ModelView::Fields some) {
  return !(changed & some).isEmpty();
}

QWidget* section(QWidget* content, int side, int above, int below) {
  auto* all = new QWidget;
  auto* column = new QVBoxLayout(all);
  column->setContentsMargins(side, above, side, below);
  column->addWidget(content);
  return all;
}

/// What the keyboard reaches, `part` itself or within it.
std::vector<QWidget*> controlsIn(QWidget& part) {
  if (part.focusPolicy() & Qt::TabFocus) return {&part};
  std::vector<QWidget*> controls;
  for (QWidget* control : part.findChildren<QWidget*>())
    if (control->focusPolicy() & Qt::TabFocus && !control->isWindow()) controls.push_back(control);
  return controls;
}

Button* footerButton(const Theme& theme, Symbol symbol, const QString& title, const QString& toolTip) {
  auto* button = new Button(theme, ButtonKind::borderless, ButtonSize::normal);
  button->setSymbol(symbol);
  button->setTitle(title);
  button->setToolTip(toolTip);
  button->setAccessibleDescription(toolTip);
  return button;
}

/// As high as what it holds wants to be, and less where there is less room.
class FittingArea final : public ScrollArea {
public:
  using ScrollArea::ScrollArea;

  [[nodiscard]] QSize sizeHint() const override { return widget()->sizeHint(); }
  [[nodiscard]] QSize minimumSizeHint() const override { return {0, std::min(least, sizeHint().height())}; }

protected:
  bool eventFilter(QObject* watched, QEvent* event) override {
    if (watched == widget() && event->type() == QEvent::LayoutRequest) updateGeometry();
    return ScrollArea::eventFilter(watched, event);
  }

private:
  static constexpr int least = 86; // One fan and a part of the next.
};

} // namespace

MenuBarView::MenuBarView(const ViewContext& context, QWidget* parent)
    : ModelView(context, ofAll, parent),
      header_(new MenuBarHeader(context.theme)),
      chips_(new SensorChipsRow(context.theme)),
      chipsSection_(new QWidget),
      inactive_(new MenuBarHelperRow(context, HelperNotice::Kind::inactive)),
      stale_(new MenuBarHelperRow(context, HelperNotice::Kind::stale)) {
  setFixedWidth(metrics::panelWidth);
  const auto divider = [this] { return new Divider(theme(), Qt::Horizontal); };
  auto* ofChipsSection = new QVBoxLayout(chipsSection_);
  ofChipsSection->setContentsMargins(0, 0, 0, 0);
  ofChipsSection->setSpacing(0);
  ofChipsSection->addWidget(section(chips_, sides, metrics::space10, metrics::space10));
  ofChipsSection->addWidget(divider());

  auto* column = new QVBoxLayout(this);
  column->setContentsMargins(stroke, stroke, stroke, stroke);
  column->setSpacing(0);
  column->addWidget(section(header_, sides, metrics::space10, metrics::space10));
  column->addWidget(divider());
  column->addWidget(chipsSection_);
  column->addWidget(makeFansSection());
  for (MenuBarHelperRow* row : {inactive_, stale_}) {
    row->setContentsMargins(sides, metrics::space8, sides, metrics::space8);
    column->addWidget(row);
    connect(row, &MenuBarHelperRow::left, this, &MenuBarView::left);
  }
  column->addWidget(divider());
  column->addWidget(makePresetRow());
  column->addWidget(divider());
  column->addWidget(makeFooter());
  connect(&context.theme, &Theme::changed, this, [this] { refresh(ofHeader | ofChips); });
}

QWidget* MenuBarView::makeFansSection() {
  auto* content = new QWidget;
  fans_ = new QVBoxLayout(content);
  fans_->setContentsMargins(sides, metrics::space12, sides, metrics::space12);
  fans_->setSpacing(betweenFans);
  noFans_ = new TextLabel(theme(), TextRole::body, &Palette::secondaryText);
  noFans_->setText(menuBarTexts().noFans);
  fans_->addWidget(noFans_, 0, Qt::AlignHCenter);
  auto* area = new FittingArea(theme());
  area->setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Maximum);
  area->setContent(content);
  return area;
}

QWidget* MenuBarView::makePresetRow() {
  constexpr int presetSymbolSide = 15;
  auto* label = new TextLabel(theme(), TextRole::caption, &Palette::secondaryText);
  label->setText(menuBarTexts().preset);
  preset_ = new PresetMenu(context());
  preset_->button().setSize(ButtonSize::small);
  preset_->button().setSymbolSize(presetSymbolSide);
  auto* all = new QWidget;
  auto* row = new QHBoxLayout(all);
  row->setContentsMargins(0, 0, 0, 0);
  row->setSpacing(metrics::space8);
  row->addWidget(label);
  row->addStretch();
  row->addWidget(preset_);
  return section(all, sides, metrics::space8, metrics::space8);
}

QWidget* MenuBarView::makeFooter() {
  const MenuBarTexts texts = menuBarTexts();
  restoreAuto_ = footerButton(theme(), Symbol::uturnCircle, texts.restoreAuto, texts.restoreAutoToolTip);
  connect(restoreAuto_, &Button::clicked, this, [this] { model().activateAutomatic(); });
  open_ = footerButton(theme(), Symbol::window, texts.openWindow, texts.openWindowToolTip);
  connect(open_, &Button::clicked, this, [this] {
    Q_EMIT left();
    context().openDashboard();
  });
  actions_ = new MenuBarActionRow(context());
  connect(actions_, &MenuBarActionRow::left, this, &MenuBarView::left);

  auto* first = new QHBoxLayout;
  first->setSpacing(0);
  first->addWidget(restoreAuto_);
  first->addStretch();
  first->addWidget(open_);
  auto* all = new QWidget;
  auto* rows = new QVBoxLayout(all);
  rows->setContentsMargins(0, 0, 0, 0);
  rows->setSpacing(metrics::space4);
  rows->addLayout(first);
  rows->addWidget(actions_);
  // Titles stand on the panel's margins, so the buttons' grounds reach beyond them.
  constexpr int below = 9;
  return section(all, sides - Button::plainPadding, metrics::space8, below);
}

QSize MenuBarView::sizeHint() const {
  const QSize wanted = layout()->totalSizeHint();
  return {metrics::panelWidth, layout()->hasHeightForWidth()
                                   ? layout()->totalHeightForWidth(metrics::panelWidth)
                                   : wanted.height()};
}

void MenuBarView::refresh(Fields changed) {
  if (touches(changed, ofHeader)) refreshHeader();
  if (touches(changed, ofChips)) refreshChips();
  if (touches(changed, ofFans)) refreshFans();
  if (touches(changed, ofHelper)) refreshHelper();
  if (touches(changed, ofUpdates)) actions_->refresh();
}

void MenuBarView::refreshHeader() {
  const QString statusWord = runningNow(model().activePreset(), model().activePlan());
  header_->setContent(panelHeaderContent(model().snapshot(), statusWord, schemeOf(theme())));
}

void MenuBarView::refreshChips() {
  const auto chips = sensorChips(model().snapshot(), schemeOf(theme()));
  chips_->setChips(chips);
  chipsSection_->setVisible(!chips.empty());
}

void MenuBarView::refreshFans() {
  const std::vector<core::Fan>& fans = model().snapshot().fans;
  adjustBlocks(fans);
  for (std::size_t place = 0; place < fans.size(); ++place)
    blocks_[place]->refresh(fans[place]);
}

/// Blocks stay with their fans: what is dragged in one, and where the keyboard is, must not pass to another,
/// and must not end because another fan comes or goes.
void MenuBarView::adjustBlocks(const std::vector<core::Fan>& fans) {
  const auto areSame = [](const FanControlBlock* block, const core::Fan& fan) {
    return block->fanID() == fan.id;
  };
  if (std::equal(blocks_.begin(), blocks_.end(), fans.begin(), fans.end(), areSame)) return;
  std::vector<FanControlBlock*> known = std::exchange(blocks_, {});
  for (const core::Fan& fan : fans)
    blocks_.push_back(takeBlock(known, fan));
  for (FanControlBlock* gone : known)
    delete gone;
  for (FanControlBlock* block : blocks_) {
    fans_->addWidget(block); // Behind those before it, wherever it was.
    block->show();           // At once: the panel needs its size before it opens.
  }
  noFans_->setVisible(fans.empty());
  orderForKeyboard();
}

/// Out of `known`, or new.
FanControlBlock* MenuBarView::takeBlock(std::vector<FanControlBlock*>& known, const core::Fan& fan) const {
  const auto found = std::find_if(known.begin(), known.end(),
                                  [&](const FanControlBlock* block) { return block->fanID() == fan.id; });
  if (found == known.end()) return new FanControlBlock(context(), fan);
  FanControlBlock* const block = *found;
  known.erase(found);
  return block;
}

/// From top to bottom, in which new blocks came last: everything goes behind the first control, the last of
/// it first. (Qt takes a control for well placed that follows the last one around the corner.)
void MenuBarView::orderForKeyboard() {
  std::vector<QWidget*> parts(blocks_.begin(), blocks_.end());
  parts.insert(parts.end(), {inactive_, stale_, preset_, restoreAuto_, open_, actions_});
  std::vector<QWidget*> controls;
  for (QWidget* part : parts) {
    const std::vector<QWidget*> its = controlsIn(*part);
    controls.insert(controls.end(), its.begin(), its.end());
  }
  for (std::size_t place = controls.size(); place > 1; --place)
    setTabOrder(controls.front(), controls[place - 1]);
}

void MenuBarView::refreshHelper() {
  const auto notice = panelHelperRow(helperCondition(model()));
  for (MenuBarHelperRow* row : {inactive_, stale_})
    row->setNotice(notice);
}

} // namespace ventolith::ui
