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
constexpr int belowControls = 15;
constexpr int liveLineAbove = 10, liveLineBelow = 13;

Button* makeButton(const Theme& theme, ButtonKind kind, Symbol symbol, const QString& title) {
  auto* button = new Button(theme, kind, ButtonSize::normal);
  button->setSymbol(symbol);
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
      empty_(makeEmptyCard()),
      controls_(new CurveControlsRow(context.theme)),
      chart_(new CurveChart(context.theme)),
      liveLine_(new CurveLiveLine(context.theme)),
      tuning_(new CurveTuningCard(context.theme)),
      popover_(new Popover(context.theme, this)),
      form_(new SavePresetForm(context.theme)) {
  editor_ = makeEditor();
  popover_->setContent(form_);
  popover_->setInitialFocus(form_->field());
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
  column->setContentsMargins(metrics::screenSides, metrics::screenTop, metrics::screenSides,
                             metrics::screenBottom);
  column->addWidget(makeHeader());
  column->addWidget(empty_);
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

Card* CurvesView::makeEmptyCard() const {
  auto* card = new Card(theme());
  card->content()->addWidget(new EmptyLine(theme(), curveEditingTexts().noFans));
  return card;
}

QWidget* CurvesView::makeEditor() {
  auto* editor = new QWidget;
  auto* column = makeColumn(editor, 0);
  column->addWidget(controls_);
  column->addSpacing(belowControls);
  column->addWidget(makeChartCard());
  column->addSpacing(metrics::betweenCards);
  column->addWidget(makeActions());
  column->addSpacing(metrics::betweenCards);
  column->addWidget(tuning_);
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

QWidget* CurvesView::makeActions() {
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
  connect(controls_, &CurveControlsRow::fanChosen, this, [this](core::FanID fan) {
    editing_->chooseFan(fan);
    display();
  });
  connect(controls_, &CurveControlsRow::linkChanged, this,
          [this](bool isLinked) { editing_->setLinked(isLinked); });
  connect(controls_, &CurveControlsRow::sensorChosen, this, [this](const auto& sensorID) {
    editing_->chooseSensor(sensorID);
    display();
  });
  connect(chart_, &CurveChart::edited, this, &CurvesView::displayCurve);
  connect(tuning_, &CurveTuningCard::hysteresisMoved, this, [this](double celsius) {
    editing_->setHysteresis(celsius);
    tuning_->display(*editing_);
  });
  connect(tuning_, &CurveTuningCard::responseMoved, this, [this](double alpha) {
    editing_->setResponseAlpha(alpha);
    tuning_->display(*editing_);
  });
  connect(tuning_, &CurveTuningCard::committed, this, [this] { editing_->commitTuning(); });
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
  connect(form_, &SavePresetForm::cancelled, popover_, &QWidget::close);
  connect(popover_, &Popover::closed, this, [this] { editing_->cancelSavingPreset(); });
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
  popover_->openFrom(*savePreset_);
}

void CurvesView::savePreset() {
  editing_->savePreset();
  if (!editing_->isSavingPreset()) popover_->close();
}

// What it shows

void CurvesView::beginVisit() {
  auto editing = std::make_unique<CurveEditing>(*curveModel_);
  chart_->setEditing(*editing);
  editing_ = std::move(editing);
  editing_->appear();
  tuning_->display(*editing_);
  display();
}

void CurvesView::refresh(Fields) {
  editing_->takeSnapshot();
  display();
}

void CurvesView::display() {
  empty_->setVisible(!editing_->hasFans());
  editor_->setVisible(editing_->hasFans());
  controls_->display(model().snapshot(), *editing_);
  chart_->refresh();
  displayCurve();
}

/// What changes with the curve, while the chart shows that itself.
void CurvesView::displayCurve() {
  deletePoint_->setEnabled(editing_->canDeleteSelected());
  liveLine_->display(editing_->livePoint());
}

/// The application brings it into view. A window that comes back from the dock was in view all the time.
void CurvesView::showEvent(QShowEvent* event) {
  if (!event->spontaneous()) beginVisit();
  settleChartHeight();
  ModelView::showEvent(event);
}

void CurvesView::hideEvent(QHideEvent* event) {
  if (!event->spontaneous()) popover_->close();
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
