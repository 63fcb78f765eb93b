#include "ui/NewPresetCard.h"

#include "ui/PresetCard.h"
#include "ui/kit/Metrics.h"
#include "ui/kit/Painting.h"
#include "ui/kit/Type.h"
#include "ui/state/PresetCardContent.h"

#include <QPainter>

#include <algorithm>

namespace ventolith::ui {
namespace {

constexpr int padding = 22;
constexpr int iconSide = 28, iconGap = 8, titleGap = 2;
constexpr double widestCaption = 200; // Two lines of much the same length.
constexpr int reach = Surface::shadowReach;

} // namespace

NewPresetCard::NewPresetCard(const ViewContext& context, QWidget* parent)
    : QPushButton(parent),
      theme_(context.theme),
      title_(presetsTexts().newFromCurrent),
      caption_(presetsTexts().newFromCurrentCaption),
      feel_(context.theme, *this, [this] { return RingShape{ground(), metrics::cardRadius}; }) {
  setText(title_);
  setAccessibleDescription(caption_);
  setAttribute(Qt::WA_LayoutUsesWidgetRect);
  setAutoDefault(false);
  setFocusPolicy(Qt::StrongFocus);
  QSizePolicy policy(QSizePolicy::Expanding, QSizePolicy::Preferred);
  policy.setHeightForWidth(true);
  setSizePolicy(policy);
  theme_.repaints(this);
  connect(this, &QAbstractButton::pressed, this, [this] { feel_.setPressed(true); });
  connect(this, &QAbstractButton::released, this, [this] { feel_.setPressed(false); });
  connect(this, &QAbstractButton::clicked, this, [&model = context.model] { model.newPresetFromCurrent(); });
}

QRectF NewPresetCard::ground() const {
  return QRectF(rect()).adjusted(reach, reach, -reach, -reach);
}

QStringList NewPresetCard::captionLines(double cardWidth) const {
  return wrapped(caption_, TextRole::caption, std::min(cardWidth - 2 * padding, widestCaption));
}

int NewPresetCard::heightForWidth(int width) const {
  const int lines = static_cast<int>(captionLines(width - 2 * reach).size());
  const int content = iconSide + iconGap + styleOf(TextRole::cardTitle).line + titleGap +
                      lines * styleOf(TextRole::caption).line;
  return std::max(PresetCard::leastHeight, content + 2 * padding) + 2 * reach;
}

QSize NewPresetCard::sizeHint() const {
  const int width = metrics::presetMinimum + 2 * reach;
  return {width, heightForWidth(width)};
}

bool NewPresetCard::hitButton(const QPoint& position) const {
  return ground().contains(position);
}

void NewPresetCard::paintEvent(QPaintEvent*) {
  const Palette& palette = theme_.palette();
  QPainter painter(this);
  paintBox(painter, ground(),
           {.fill = faded(palette.primaryText, feel_.mix(metrics::hoverMix, metrics::pressMix)),
            .stroke = palette.newCardStroke,
            .radius = metrics::cardRadius,
            .strokeWidth = metrics::dashedStroke,
            .dashOn = metrics::dashOn,
            .dashOff = metrics::dashOff});

  const QStringList lines = captionLines(ground().width());
  const int titleLine = styleOf(TextRole::cardTitle).line, captionLine = styleOf(TextRole::caption).line;
  const double content =
      iconSide + iconGap + titleLine + titleGap + static_cast<double>(lines.size()) * captionLine;
  QRectF row(ground().left(), ground().center().y() - content / 2, ground().width(), iconSide);
  theme_.icons().paint(painter, row, Symbol::plusCircle, palette.accent);
  row = QRectF(row.left(), row.bottom() + iconGap, row.width(), titleLine);
  TextLine(title_, TextRole::cardTitle).paint(painter, row, palette.primaryText, Qt::AlignHCenter);
  row = QRectF(row.left(), row.bottom() + titleGap, row.width(), captionLine);
  for (const QString& line : lines) {
    TextLine(line, TextRole::caption).paint(painter, row, palette.secondaryText, Qt::AlignHCenter);
    row.translate(0, captionLine);
  }
}

} // namespace ventolith::ui
