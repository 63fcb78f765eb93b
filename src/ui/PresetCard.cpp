#include "ui/PresetCard.h"

#include "ui/CurveThumbnail.h"
#include "ui/KitValues.h"
#include "ui/kit/Badge.h"
#include "ui/kit/Button.h"
#include "ui/kit/IconView.h"
#include "ui/kit/MenuButton.h"
#include "ui/kit/TextField.h"
#include "ui/kit/TextLabel.h"
#include "ui/state/PresetAppearance.h"

#include <QKeyEvent>
#include <QVBoxLayout>

namespace ventolith::ui {
namespace {

constexpr int padding = 15;
constexpr int lineHeight = 24;                             // Of the header and the footer.
constexpr int nameLine = 20;                               // What of the header counts in the spacing.
constexpr int headerOverlap = (lineHeight - nameLine) / 2; // Reaches into the space around it.
constexpr int dotDiameter = 10;

} // namespace

PresetCard::PresetCard(const ViewContext& context, const core::FanPreset& preset, QWidget* parent)
    : Surface(context.theme, surfaces::presetCard, parent),
      context_(context),
      preset_(preset),
      content_(presetCardContent(preset, context.model.activePresetID(), context.model.isHelperActive())),
      texts_(presetsTexts()) {
  setMinimumHeight(leastHeight + 2 * shadowReach);
  makePieces();
  layOut();
  showContent();
  connect(&theme(), &Theme::changed, this, &PresetCard::showDot);
}

PresetCard::~PresetCard() = default;

void PresetCard::makePieces() {
  dot_ = new Dot(dotDiameter, Qt::transparent, this);
  name_ = new TextLabel(theme(), TextRole::presetName, &Palette::primaryText, this);
  name_->setFit(Fit::elided);
  nameField_ = new TextField(theme(), this);
  nameField_->setFixedHeight(lineHeight);
  nameField_->setPlaceholderText(texts_.namePlaceholder);
  nameField_->setAccessibleName(texts_.namePlaceholder);
  connect(nameField_, &QLineEdit::textChanged, this,
          [this](const QString& text) { renaming_.draftName = text; });
  connect(nameField_, &QLineEdit::returnPressed, this, &PresetCard::submitName);

  menu_ = new MenuButton(theme(), MenuButtonKind::symbol, this);
  menu_->setSymbol(Symbol::ellipsisCircle);
  menu_->setSymbolAlignment(Qt::AlignTrailing);
  menu_->setAccessibleName(texts_.more);
  menu_->setRows([this] { return menuRows(); });

  thumbnail_ = new CurveThumbnail(theme(), this);
  caption_ = new TextLabel(theme(), TextRole::caption, &Palette::secondaryText, this);
  caption_->setFit(Fit::wrapped);
  caption_->setText(presetCaption(preset_.id));

  activeBadge_ = new Badge(theme(), BadgeSize::normal, this);
  activeBadge_->setContent(Symbol::checkmarkCircle, texts_.active, BadgeStyle::active);
  activateButton_ = new Button(theme(), ButtonKind::bordered, ButtonSize::small, this);
  activateButton_->setTitle(texts_.activate);
  connect(activateButton_, &QAbstractButton::clicked, this,
          [this] { context_.model.activatePreset(preset_); });
}

void PresetCard::layOut() {
  auto* picture = new QHBoxLayout;
  picture->setSpacing(metrics::space12);
  picture->addWidget(thumbnail_);
  picture->addWidget(caption_, 1, Qt::AlignVCenter);

  auto* all = new QVBoxLayout(this);
  constexpr int edge = shadowReach + padding;
  all->setContentsMargins(edge, edge - headerOverlap, edge, edge);
  all->setSpacing(0);
  all->addLayout(header());
  all->addSpacing(metrics::space12 - headerOverlap);
  all->addLayout(picture);
  all->addSpacing(metrics::space12);
  all->addStretch();
  all->addSpacing(metrics::space12);
  all->addLayout(footer());
}

QHBoxLayout* PresetCard::header() {
  auto* row = new QHBoxLayout;
  row->setSpacing(metrics::space8);
  row->addStrut(lineHeight);
  row->addWidget(dot_, 0, Qt::AlignVCenter);
  row->addWidget(name_, 1, Qt::AlignVCenter);
  row->addWidget(nameField_, 1, Qt::AlignVCenter);
  row->addWidget(menu_, 0, Qt::AlignVCenter);
  return row;
}

QHBoxLayout* PresetCard::footer() {
  auto* row = new QHBoxLayout;
  row->setSpacing(0);
  row->addStrut(lineHeight);
  row->addWidget(activeBadge_, 0, Qt::AlignVCenter);
  row->addWidget(activateButton_, 0, Qt::AlignVCenter);
  row->addStretch();
  return row;
}

std::vector<QWidget*> PresetCard::tabStops() {
  return {nameField_, menu_, activateButton_};
}

void PresetCard::refresh(const core::FanPreset& preset) {
  PresetCardContent content =
      presetCardContent(preset, context_.model.activePresetID(), context_.model.isHelperActive());
  if (preset == preset_ && content == content_) return;
  preset_ = preset;
  content_ = std::move(content);
  showContent();
}

void PresetCard::showContent() {
  setStyle(content_.isActive ? surfaces::activePresetCard : surfaces::presetCard);
  setAccessibleName(content_.name);
  name_->setText(content_.name);
  menu_->setAccessibleDescription(content_.name);
  activateButton_->setAccessibleDescription(content_.name);
  thumbnail_->setContent(presetThumbnail(preset_));
  showDot();
  showName();

  const bool losesFocus = content_.isActive && activateButton_->hasFocus();
  if (losesFocus) menu_->setFocus(Qt::OtherFocusReason);
  activeBadge_->setVisible(content_.isActive);
  activateButton_->setVisible(!content_.isActive);
  activateButton_->setEnabled(content_.canActivate);
  activateButton_->setToolTip(content_.activateToolTip);
}

void PresetCard::showDot() {
  dot_->setColor(qColor(presetDotColor(preset_.id, schemeOf(theme()))));
}

void PresetCard::showName() {
  name_->setVisible(!renaming_.isEditingName);
  nameField_->setVisible(renaming_.isEditingName);
}

std::vector<MenuRow> PresetCard::menuRows() {
  return {{.title = texts_.duplicate, .action = [this] { context_.model.duplicatePreset(preset_); }},
          {.title = texts_.rename, .action = [this] { beginRenaming(); }},
          {.title = texts_.deletePreset,
           .role = MenuRole::destructive,
           .isEnabled = content_.canDelete,
           .toolTip = content_.deleteToolTip,
           .action = [this] { context_.model.deletePreset(preset_); }}};
}

void PresetCard::beginRenaming() {
  renaming_.begin(preset_);
  nameField_->setText(renaming_.draftName);
  showName();
  nameField_->selectAll();
  nameField_->setFocus(Qt::OtherFocusReason);
}

void PresetCard::submitName() {
  if (!renaming_.isEditingName) return;
  const std::string name = renaming_.submit();
  endRenaming();
  context_.model.renamePreset(preset_, name);
}

void PresetCard::endRenaming() {
  renaming_.cancel();
  if (nameField_->hasFocus()) menu_->setFocus(Qt::OtherFocusReason);
  showName();
}

void PresetCard::keyPressEvent(QKeyEvent* event) {
  if (event->key() == Qt::Key_Escape && renaming_.isEditingName) return endRenaming();
  Surface::keyPressEvent(event);
}

} // namespace ventolith::ui
