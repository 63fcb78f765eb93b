#include "ui/RuleRow.h"

#include "ui/kit/Button.h"
#include "ui/kit/IconView.h"
#include "ui/kit/MenuButton.h"
#include "ui/kit/Painting.h"
#include "ui/kit/Stepper.h"
#include "ui/kit/Switch.h"
#include "ui/kit/TextLabel.h"
#include "ui/state/RuleEditing.h"

#include <QHBoxLayout>
#include <QPainter>

#include <utility>

namespace ventolith::ui {
namespace {

constexpr int paddingTop = 14, paddingSides = 16, paddingBottom = 11;
constexpr int lineHeight = 24, betweenLines = 6;
constexpr int keywordColumn = 66, keywordGap = 8;
constexpr int aboveDivider = 11, belowDivider = 7;
constexpr int secondaryHeight = 26;
constexpr int dotDiameter = 7;
constexpr int betweenWords = 8, betweenMenuAndWord = 5;
constexpr int widestMenu = 300; // Of the names that a machine gives, few are longer.
constexpr double disabledDotOpacity = 0.4;

/// Lies over what it makes faint, in the colour of the ground beneath: the same to the eye as less opacity,
/// without a picture of its own for each repaint.
class Veil final : public QWidget {
public:
  Veil(const Theme& theme, QWidget* parent) : QWidget(parent), theme_(theme) {
    setAttribute(Qt::WA_TransparentForMouseEvents);
  }

protected:
  void paintEvent(QPaintEvent*) override {
    QPainter painter(this);
    paintBox(painter, rect(),
             {.fill = faded(theme_.palette().cardBackground, 1 - metrics::disabledRuleOpacity),
              .radius = metrics::cardRadius - metrics::hairline});
  }

private:
  const Theme& theme_;
};

StepperRange stepperRange(const RuleFieldRange& range) {
  return {.minimum = range.lower, .maximum = range.upper, .step = range.step};
}

MenuButton* menuButton(const Theme& theme, const QString& description, QWidget* parent) {
  auto* button = new MenuButton(theme, MenuButtonKind::inLine, parent);
  button->setMaximumWidth(widestMenu);
  button->setAccessibleDescription(description);
  return button;
}

Stepper* stepper(const Theme& theme, StepperSize size, const RuleFieldRange& range, const QString& name,
                 QWidget* parent) {
  auto* made = new Stepper(theme, size, parent);
  made->setRange(stepperRange(range));
  made->setAccessibleName(name);
  if (size == StepperSize::small) made->setLabelColor(&Palette::secondaryText);
  return made;
}

TextLabel* word(const Theme& theme, TextRole role, const QString& text) {
  auto* label = new TextLabel(theme, role, &Palette::secondaryText);
  label->setText(text);
  return label;
}

QHBoxLayout* line(int height) {
  auto* row = new QHBoxLayout;
  row->setSpacing(0);
  row->addStrut(height);
  return row;
}

void add(QHBoxLayout& row, QWidget* piece, int gapBefore) {
  row.addSpacing(gapBefore);
  row.addWidget(piece, 0, Qt::AlignVCenter);
}

template <class Value, class Choose>
std::vector<MenuRow> menuRows(const PickerContent<Value>& content, const Choose& choose) {
  std::vector<MenuRow> rows;
  for (std::size_t place = 0; place < content.entries.size(); ++place) {
    const auto& entry = content.entries[place];
    rows.push_back({.title = entry.title,
                    .mark = place == content.selected ? MenuMark::column : MenuMark::none,
                    .action = [choose, value = entry.value] { choose(value); }});
  }
  return rows;
}

/// Of two digits, as nearly all are: room for more would part each of them from its arrows.
RuleRowContent usualLabels() {
  constexpr double usual = 30;
  return ruleRowContent({.thresholdCelsius = usual,
                         .releaseBelowCelsius = usual,
                         .targetPercent = usual,
                         .dwellSeconds = usual},
                        core::SensorSnapshot::empty);
}

} // namespace

RuleRow::RuleRow(const ViewContext& context, core::FanRule rule, QWidget* parent)
    : Surface(context.theme, surfaces::card, parent),
      context_(context),
      rule_(std::move(rule)),
      texts_(rulesTexts()),
      veil_(nullptr),
      feel_(context.theme, *this, [this] { return RingShape{QRectF(rect()), metrics::cardRadius}; }) {
  setFocusPolicy(Qt::StrongFocus);
  makeControls();
  layOut();
  connectControls();
  veil_ = new Veil(theme(), this);
  connect(&theme(), &Theme::changed, this, &RuleRow::showDot);
  showContent(ruleRowContent(rule_, context_.model.snapshot()));
}

RuleRow::~RuleRow() = default;

void RuleRow::makeControls() {
  sensorMenu_ = menuButton(theme(), tr("Sensor"), this);
  thresholdStepper_ = stepper(theme(), StepperSize::normal, thresholdRange, tr("Threshold"), this);
  fanMenu_ = menuButton(theme(), tr("Fans"), this);
  targetPercentStepper_ = stepper(theme(), StepperSize::normal, targetPercentRange, tr("Fan speed"), this);
  releaseBelowStepper_ = stepper(theme(), StepperSize::small, releaseBelowRange, tr("Release point"), this);
  dwellStepper_ = stepper(theme(), StepperSize::small, dwellRange, tr("Dwell"), this);
  const RuleRowContent usual = usualLabels();
  thresholdStepper_->setRoomFor(usual.threshold);
  targetPercentStepper_->setRoomFor(usual.targetPercent);
  releaseBelowStepper_->setRoomFor(usual.releaseBelow);
  dwellStepper_->setRoomFor(usual.dwell);
  enabledToggle_ = new Switch(theme(), this);
  enabledToggle_->setAccessibleName(tr("Enabled"));
  enabledDot_ = new Dot(dotDiameter, Qt::transparent, this);
  enabledWord_ = new TextLabel(theme(), TextRole::caption, &Palette::secondaryText, this);
  deleteButton_ = new Button(theme(), ButtonKind::borderless, ButtonSize::normal, this);
  deleteButton_->setSymbol(Symbol::trash);
  deleteButton_->setRole(ButtonRole::destructive);
  deleteButton_->setAccessibleName(texts_.deleteRule);
}

void RuleRow::layOut() {
  auto* all = new QVBoxLayout(this);
  all->setContentsMargins(paddingSides, paddingTop, paddingSides, paddingBottom);
  all->setSpacing(0);
  all->addLayout(primaryLines());
  all->addSpacing(aboveDivider);
  all->addWidget(new Divider(theme(), Qt::Horizontal));
  all->addSpacing(belowDivider);
  all->addLayout(secondaryLine());
}

QVBoxLayout* RuleRow::primaryLines() {
  auto* lines = new QVBoxLayout;
  lines->setSpacing(betweenLines);
  const auto addLine = [&](const QString& keyword, QWidget* menu, const QString& verb, QWidget* stepper) {
    QHBoxLayout* row = line(lineHeight);
    TextLabel* label = word(theme(), TextRole::keyword, keyword);
    label->setFixedWidth(keywordColumn);
    add(*row, label, 0);
    add(*row, menu, keywordGap - Button::plainPadding);
    add(*row, word(theme(), TextRole::body, verb), betweenMenuAndWord);
    add(*row, stepper, betweenWords);
    row->addStretch();
    lines->addLayout(row);
  };
  addLine(texts_.when, sensorMenu_, texts_.exceeds, thresholdStepper_);
  addLine(texts_.thenSet, fanMenu_, texts_.to, targetPercentStepper_);
  return lines;
}

QHBoxLayout* RuleRow::secondaryLine() {
  const QString dot = QStringLiteral("·");
  QHBoxLayout* row = line(secondaryHeight);
  add(*row, releaseBelowStepper_, 0);
  add(*row, word(theme(), TextRole::caption, dot), betweenWords);
  add(*row, dwellStepper_, betweenWords);
  add(*row, word(theme(), TextRole::caption, dot), betweenWords);
  add(*row, enabledToggle_, betweenWords);
  add(*row, enabledDot_, betweenWords);
  add(*row, enabledWord_, metrics::space6);
  row->addStretch();
  row->addWidget(deleteButton_, 0, Qt::AlignVCenter);
  return row;
}

void RuleRow::connectControls() {
  using Change = core::FanRule (*)(core::FanRule, double);
  const auto steps = [this](Stepper* stepper, Change change) {
    connect(stepper, &Stepper::valueWanted, this, [this, change](double value) {
      edit([&](core::FanRule rule) { return change(std::move(rule), value); });
    });
  };
  steps(thresholdStepper_, withThreshold);
  steps(targetPercentStepper_, withTargetPercent);
  steps(releaseBelowStepper_, withReleaseBelow);
  steps(dwellStepper_, withDwell);
  connect(enabledToggle_, &QAbstractButton::clicked, this, [this](bool isOn) {
    edit([isOn](core::FanRule rule) { return withEnabled(std::move(rule), isOn); });
  });
  connect(deleteButton_, &QAbstractButton::clicked, this, [this] { context_.model.deleteRule(rule_.id); });
  sensorMenu_->setRows([this] { return sensorRows(); });
  fanMenu_->setRows([this] { return fanRows(); });
}

std::vector<QWidget*> RuleRow::tabStops() {
  return {this,          sensorMenu_,           thresholdStepper_,
          fanMenu_,      targetPercentStepper_, releaseBelowStepper_,
          dwellStepper_, enabledToggle_,        deleteButton_};
}

void RuleRow::edit(const Edit& change) {
  core::FanRule changed = change(rule_);
  context_.model.updateRule(changed);
  refresh(changed); // Here and now: the next step of a held arrow goes on from it.
}

void RuleRow::refresh(const core::FanRule& rule) {
  const core::SensorSnapshot& snapshot = context_.model.snapshot();
  const bool isSameRule = rule == rule_;
  rule_ = rule;
  if (sensorMenu_->isMenuOpen() && ruleSensorMenu(rule_, snapshot) != sensors_) sensorMenu_->refreshMenu();
  if (fanMenu_->isMenuOpen() && ruleFanMenu(rule_, snapshot) != fans_) fanMenu_->refreshMenu();
  RuleRowContent content = ruleRowContent(rule_, snapshot);
  if (!isSameRule || content != content_) showContent(content);
}

void RuleRow::showContent(const RuleRowContent& content) {
  content_ = content;
  sensorMenu_->setTitle(content.sensor);
  fanMenu_->setTitle(content.fanTarget);
  thresholdStepper_->setValue(rule_.thresholdCelsius, content.threshold);
  targetPercentStepper_->setValue(rule_.targetPercent, content.targetPercent);
  releaseBelowStepper_->setValue(rule_.releaseBelowCelsius, content.releaseBelow);
  dwellStepper_->setValue(rule_.dwellSeconds, content.dwell);
  enabledToggle_->setChecked(content.isEnabled);
  enabledWord_->setText(content.enabledWord);
  showDot();
  veil_->setVisible(!content.isEnabled);
  setAccessibleName(QStringList({texts_.when, content.sensor, texts_.exceeds, content.threshold,
                                 texts_.thenSet, content.fanTarget, texts_.to, content.targetPercent})
                        .join(QLatin1Char(' ')));
}

void RuleRow::showDot() {
  const Palette& palette = theme().palette();
  enabledDot_->setColor(content_.isEnabled ? palette.success
                                           : faded(palette.secondaryText, disabledDotOpacity));
}

std::vector<MenuRow> RuleRow::sensorRows() {
  sensors_ = ruleSensorMenu(rule_, context_.model.snapshot());
  return menuRows(sensors_, [this](const std::optional<std::string>& chosen) {
    edit([&](core::FanRule rule) { return withSensor(std::move(rule), chosen); });
  });
}

std::vector<MenuRow> RuleRow::fanRows() {
  fans_ = ruleFanMenu(rule_, context_.model.snapshot());
  return menuRows(fans_, [this](const core::RuleFanTarget& chosen) {
    edit([&](core::FanRule rule) { return withFanTarget(std::move(rule), chosen); });
  });
}

void RuleRow::resizeEvent(QResizeEvent* event) {
  Surface::resizeEvent(event);
  constexpr int stroke = 1; // The card's own stays as it is.
  veil_->setGeometry(rect().adjusted(stroke, stroke, -stroke, -stroke));
}

} // namespace ventolith::ui
