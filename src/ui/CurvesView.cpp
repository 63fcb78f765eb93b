#include "ui/CurvesView.h"

#include "ui/CurveChart.h"
#include "ui/CurveControlsRow.h"
#include "ui/CurveLiveLine.h"
#include "ui/CurveTuningCard.h"
#include "ui/SavePresetForm.h"
#include "ui/kit/Button.h"
#include "ui/kit/IconView.h"
#include "ui/kit/Metrics.h"
#include "ui/kit/Notices.h"
#include "ui/kit/Popover.h"
#include "ui/kit/ScrollArea.h"
#include "ui/kit/TextField.h"
#include "ui/kit/TextLabel.h"
#include "ui/state/CurveEditingTexts.h"
#include "ui/state/ScreenLayout.h"

#include <QHBoxLayout>
#include <QHideEvent>
#include <QShowEvent>
#include <QVBoxLayout>

namespace ventolith::ui {

namespace {

constexpr int plateSide = 44, plateIcon = 26, plateGap = 14;
constexpr double plateRadius = 11;
constexpr int buttonSymbol = 16;
constexpr int belowControls = 15;
constexpr int liveLineAbove = 10, liveLineBelow = 14;

Button* makeButton(const Theme& theme, ButtonKind kind, Symbol symbol, const QString& title) {
  auto* button = new Button(theme, kind, ButtonSize::normal);
  button->setSymbol(symbol);
  button->setSymbolSize(buttonSymbol);
  button->setTitle(title);
  return button;
}

QVBoxLayout* makeColumn(QWidget* parent, int spacing) {
  auto* column = new QVBoxLayout(parent);
  column->setContentsMargins(0, 0, 0, 0);
  column->setSpacing(spacing);
  return column;
}

} // namespace

/// The application's model, as the editing knows it.
class CurvesView::Model final : public CurveEditingModel {
public:
  explicit Model(app::AppModel& model) : model_(model) {}

  [[nodiscard]] const core::SensorSnapshot& snapshot() const override { return model_.snapshot(); }
  [[nodiscard]] const core::FanControlPlan& activePlan() const override { return model_.activePlan(); }
  [[nodiscard]] std::optional<core::FanCurve> curve(core::FanID fan) const override {
    return model_.curve(fan);
  }
  void setFanCurve(const core::FanCurve& curve, const std::vector<core::FanID>& fanIDs) override {
    model_.setFanCurve(curve, fanIDs);
  }
  void setTuning(const core::ControlTuning& tuning) override { model_.setTuning(tuning); }
  void newPresetFromCurrent(const std::string& name) override { model_.newPresetFromCurrent(name); }

private:
  app::AppModel& model_;
};

CurvesView::CurvesView(const ViewContext& context, QWidget* parent)
    : ModelView(context, {app::AppModelField::snapshot}, parent),
      curveModel_(std::make_unique<Model>(context.model)),
      editing_(std::make_unique<CurveEditing>(*curveModel_)),
      emptyFansState_(makeEmptyFansState()),
      controlsRow_(new CurveControlsRow(context.theme)),
      chart_(new CurveChart(context.theme)),
      liveLine_(new CurveLiveLine(context.theme)),
      tuningCard_(new CurveTuningCard(context.theme)),
      savePresetPopover_(new Popover(context.theme, this)),
      form_(new SavePresetForm(context.theme)) {
  editor_ = makeEditor();
  savePresetPopover_->setContent(form_);
  savePresetPopover_->setInitialFocus(form_->field());
  chart_->setEditing(*editing_);
  arrange();
  connectControls();
  connectActions();
  connectPopover();
}

/// Hiding ends what the user holds, while there is still an editing to take it.
CurvesView::~CurvesView() {
  hide();
}

// What stands where

void CurvesView::arrange() {
  auto* content = new QWidget;
  content->setMinimumWidth(detailMinimumWidth);
  auto* column = makeColumn(content, metrics::betweenCards);
  column->setContentsMargins(detailContentInsets());
  column->addWidget(makeHeader());
  column->addWidget(emptyFansState_);
  column->addWidget(editor_);
  column->addStretch();
  auto* area = new ScrollArea(theme());
  area->setContent(content);
  makeColumn(this, 0)->addWidget(area);
}

QWidget* CurvesView::makeHeader() const {
  const CurveEditingTexts texts = curveEditingTexts();
  auto* header = new QWidget;
  auto* row = new QHBoxLayout(header);
  row->setContentsMargins(0, 0, 0, 0);
  row->setSpacing(plateGap);
  auto* plate = new Surface(theme(), {&Palette::accentFaint, nullptr, plateRadius});
  plate->setFixedSize(plateSide, plateSide);
  auto* inside = makeColumn(plate, 0);
  inside->addWidget(new IconView(theme(), Symbol::chart, plateIcon, &Palette::accent), 0, Qt::AlignCenter);
  row->addWidget(plate, 0, Qt::AlignTop);

  auto* words = makeColumn(nullptr, 0);
  auto* title = new TextLabel(theme(), TextRole::screenTitle, &Palette::primaryText);
  title->setText(texts.title);
  auto* subtitle = new TextLabel(theme(), TextRole::body, &Palette::secondaryText);
  subtitle->setFit(Fit::wrapped);
  subtitle->setText(texts.subtitle);
  words->addWidget(title);
  words->addWidget(subtitle);
  row->addLayout(words, 1);
  return header;
}

Card* CurvesView::makeEmptyFansState() const {
  auto* card = new Card(theme());
  card->content()->addWidget(new EmptyLine(theme(), curveEditingTexts().noFans));
  return card;
}

QWidget* CurvesView::makeEditor() {
  auto* editor = new QWidget;
  auto* column = makeColumn(editor, 0);
  column->addWidget(controlsRow_);
  column->addSpacing(belowControls);
  column->addWidget(makeChartCard());
  column->addSpacing(metrics::betweenCards);
  column->addWidget(makeActionsRow());
  column->addSpacing(metrics::betweenCards);
  column->addWidget(tuningCard_);
  return editor;
}

Card* CurvesView::makeChartCard() {
  auto* card = new Card(theme());
  QMargins margins = card->layout()->contentsMargins();
  margins.setBottom(liveLineBelow);
  card->layout()->setContentsMargins(margins);
  card->content()->addWidget(chart_);
  card->content()->addSpacing(metrics::space12);
  card->content()->addWidget(new Divider(theme(), Qt::Horizontal));
  card->content()->addSpacing(liveLineAbove);
  card->content()->addWidget(liveLine_, 0, Qt::AlignLeading);
  return card;
}

QWidget* CurvesView::makeActionsRow() {
  const CurveEditingTexts texts = curveEditingTexts();
  addPoint_ = makeButton(theme(), ButtonKind::bordered, Symbol::plusCircle, texts.addPoint);
  deletePoint_ = makeButton(theme(), ButtonKind::bordered, Symbol::minusCircle, texts.deletePoint);
  deletePoint_->setRole(ButtonRole::destructive);
  reset_ = makeButton(theme(), ButtonKind::bordered, Symbol::reset, texts.reset);
  savePreset_ = makeButton(theme(), ButtonKind::prominent, Symbol::save, texts.saveAsPreset);

  auto* actions = new QWidget;
  auto* column = makeColumn(actions, metrics::space8);
  auto* row = new QHBoxLayout;
  row->setSpacing(metrics::space8);
  for (Button* button : {addPoint_, deletePoint_, reset_})
    row->addWidget(button);
  row->addStretch();
  row->addWidget(savePreset_);
  column->addLayout(row);
  auto* caption = new TextLabel(theme(), TextRole::caption, &Palette::secondaryText);
  caption->setFit(Fit::wrapped);
  caption->setText(texts.caption);
  column->addWidget(caption);
  return actions;
}

// What the user does

void CurvesView::connectControls() {
  connect(controlsRow_, &CurveControlsRow::fanChosen, this, [this](core::FanID fan) {
    editing_->chooseFan(fan);
    display();
  });
  connect(controlsRow_, &CurveControlsRow::linkChanged, this,
          [this](bool linked) { editing_->setLinked(linked); });
  connect(controlsRow_, &CurveControlsRow::sensorChosen, this, [this](const auto& sensorID) {
    editing_->chooseSensor(sensorID);
    display();
  });
  connect(chart_, &CurveChart::edited, this, &CurvesView::displayCurve);
  connect(tuningCard_, &CurveTuningCard::hysteresisMoved, this, [this](double celsius) {
    editing_->setHysteresis(celsius);
    tuningCard_->display(*editing_);
  });
  connect(tuningCard_, &CurveTuningCard::responseMoved, this, [this](double alpha) {
    editing_->setResponseAlpha(alpha);
    tuningCard_->display(*editing_);
  });
  connect(tuningCard_, &CurveTuningCard::committed, this, [this] { editing_->commitTuning(); });
}

void CurvesView::connectActions() {
  connect(addPoint_, &QPushButton::clicked, this, [this] {
    editing_->addPoint();
    display();
  });
  connect(deletePoint_, &QPushButton::clicked, this, &CurvesView::deletePoint);
  connect(reset_, &QPushButton::clicked, this, [this] {
    editing_->resetCurve();
    display();
  });
  connect(savePreset_, &QPushButton::clicked, this, &CurvesView::openPopover);
}

void CurvesView::connectPopover() {
  connect(form_, &SavePresetForm::nameEdited, this,
          [this](const QString& name) { editing_->setPresetNameDraft(name); });
  connect(form_, &SavePresetForm::submitted, this, &CurvesView::savePreset);
  connect(form_, &SavePresetForm::cancelled, savePresetPopover_, &QWidget::close);
  connect(savePresetPopover_, &Popover::closed, this, [this] { editing_->cancelSavingPreset(); });
}

/// The button is out of use afterwards: the keyboard goes to the chart, and not to whatever is next.
void CurvesView::deletePoint() {
  if (deletePoint_->hasFocus()) chart_->setFocus(Qt::OtherFocusReason);
  editing_->deleteSelectedPoint();
  display();
}

void CurvesView::openPopover() {
  editing_->beginSavingPreset();
  form_->begin(editing_->presetNameDraft());
  savePresetPopover_->openFrom(*savePreset_);
}

void CurvesView::savePreset() {
  editing_->savePreset();
  if (!editing_->isSavingPreset()) savePresetPopover_->close();
}

// What it shows

void CurvesView::beginVisit() {
  auto editing = std::make_unique<CurveEditing>(*curveModel_);
  chart_->setEditing(*editing);
  editing_ = std::move(editing);
  editing_->onFirstAppear();
  tuningCard_->display(*editing_);
  display();
}

void CurvesView::refresh(Fields) {
  editing_->takeSnapshot();
  display();
}

void CurvesView::display() {
  emptyFansState_->setVisible(!editing_->hasFans());
  editor_->setVisible(editing_->hasFans());
  if (!editing_->hasFans()) savePresetPopover_->close(); // The button that it belongs to is gone.
  controlsRow_->display(model().snapshot(), *editing_);
  chart_->refresh();
  displayCurve();
}

/// What changes with the curve, while the chart shows that itself.
void CurvesView::displayCurve() {
  deletePoint_->setEnabled(editing_->canDeleteSelected());
  liveLine_->display(editing_->liveDataPoint());
}

/// The application brings it into view. A window that comes back from the dock was in view all the time.
void CurvesView::showEvent(QShowEvent* event) {
  if (!event->spontaneous()) beginVisit();
  settleChartHeight();
  ModelView::showEvent(event);
}

void CurvesView::hideEvent(QHideEvent* event) {
  if (!event->spontaneous()) savePresetPopover_->close();
  ModelView::hideEvent(event);
}

void CurvesView::resizeEvent(QResizeEvent* event) {
  settleChartHeight();
  ModelView::resizeEvent(event);
}

void CurvesView::settleChartHeight() {
  chart_->setFixedHeight(chartHeight(window()->height()));
}

} // namespace ventolith::ui
