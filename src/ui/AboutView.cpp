#include "ui/AboutView.h"

#include "ui/NoticesCard.h"
#include "ui/UpdateCheckButton.h"
#include "ui/kit/IconView.h"
#include "ui/kit/ScrollArea.h"
#include "ui/kit/TextLabel.h"
#include "ui/state/AboutContent.h"
#include "ui/state/ScreenLayout.h"

#include <QVBoxLayout>

namespace ventolith::ui {

namespace {

QWidget* makePlate(const Theme& theme) {
  constexpr int side = 64, icon = 44, inset = (side - icon) / 2;
  auto* plate = new Surface(theme, surfaces::plate);
  plate->setFixedSize(side, side);
  auto* middle = new IconView(theme, Symbol::fanFilled, icon, &Palette::accent, plate);
  middle->move(inset, inset);
  return plate;
}

TextLabel* makeLine(const Theme& theme, TextRole role, ColorRole color, const QString& text) {
  auto* line = new TextLabel(theme, role, color);
  line->setFit(Fit::elided);
  line->setText(text);
  return line;
}

} // namespace

AboutView::AboutView(const ViewContext& context, QWidget* parent)
    : ModelView(context, UpdateCheckButton::fields, parent),
      update_(new UpdateCheckButton(context, ButtonKind::bordered)) {
  auto* content = new QWidget;
  content->setMinimumWidth(detailMinimumWidth);
  auto* column = new QVBoxLayout(content);
  column->setContentsMargins(detailContentInsets());
  column->setSpacing(metrics::betweenCards);
  column->addWidget(makeIdentityCard());
  column->addWidget(update_, 0, Qt::AlignLeading);
  column->addWidget(makeLinksCard());
  column->addWidget(new NoticesCard(context.theme, context.resourceFolder));
  column->addStretch();

  auto* area = new ScrollArea(context.theme);
  area->setContent(content);
  auto* all = new QVBoxLayout(this);
  all->setContentsMargins(0, 0, 0, 0);
  all->addWidget(area);
}

Card* AboutView::makeIdentityCard() const {
  const app::BundleInfo& bundle = context().bundle;
  auto* lines = new QVBoxLayout;
  lines->setSpacing(metrics::space2);
  lines->addWidget(makeLine(theme(), TextRole::appName, &Palette::primaryText, applicationName(bundle)));
  lines->addWidget(makeLine(theme(), TextRole::body, &Palette::secondaryText, versionText(bundle)));

  auto* row = new QHBoxLayout;
  row->setSpacing(metrics::space16);
  row->addWidget(makePlate(theme()));
  row->addLayout(lines, 1);
  row->setAlignment(lines, Qt::AlignVCenter);
  auto* card = new Card(theme());
  card->content()->addLayout(row);
  return card;
}

Card* AboutView::makeLinksCard() {
  auto* support = new Button(theme(), ButtonKind::bordered, ButtonSize::normal);
  support->setTitle(aboutTexts().support);
  support->setEnabled(context().hasSupportPage);
  connect(support, &Button::clicked, this, [this] { model().openSupport(); });

  auto* card = new Card(theme());
  card->layout()->setContentsMargins(metrics::cardPadding, metrics::space12, metrics::cardPadding,
                                     metrics::space12);
  card->content()->addWidget(support, 0, Qt::AlignLeading);
  return card;
}

void AboutView::refresh(Fields) {
  update_->refresh();
}

} // namespace ventolith::ui
