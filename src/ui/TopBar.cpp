#include "ui/TopBar.h"

#include "ui/PresetMenu.h"
#include "ui/kit/Button.h"
#include "ui/kit/Metrics.h"
#include "ui/kit/Painting.h"
#include "ui/state/RootTexts.h"

#include <QHBoxLayout>
#include <QPainter>

namespace ventolith::ui {

namespace {

constexpr int line = 1; // Between the bar and the screen.

Button* makeRestoreButton(const ViewContext& context) {
  constexpr int icon = 16;
  const RootTexts texts = rootTexts();
  auto* button = new Button(context.theme, ButtonKind::bordered, ButtonSize::normal);
  button->setSymbol(Symbol::uturnCircle);
  button->setSymbolSize(icon);
  button->setTitle(texts.restoreAuto);
  button->setToolTip(texts.restoreAutoToolTip);
  button->setAccessibleDescription(texts.restoreAutoToolTip);
  QObject::connect(button, &Button::clicked, button, [&model = context.model] { model.activateAutomatic(); });
  return button;
}

} // namespace

TopBar::TopBar(const ViewContext& context, QWidget* parent)
    : QWidget(parent),
      theme_(context.theme),
      title_(new TextLabel(context.theme, TextRole::windowTitle, &Palette::primaryText)) {
  setFixedHeight(metrics::topBarHeight);
  setAttribute(Qt::WA_OpaquePaintEvent);
  context.theme.repaints(this);
  auto* row = new QHBoxLayout(this);
  row->setContentsMargins(metrics::screenSides, 0, metrics::screenSides, line);
  row->setSpacing(metrics::space8);
  title_->setFit(Fit::elided);
  row->addWidget(title_, 1);
  row->addWidget(new PresetMenu(context));
  row->addWidget(makeRestoreButton(context));
}

void TopBar::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.fillRect(rect(), theme_.palette().toolbarBackground);
  const QRectF edge(0, height() - line, width(), line);
  painter.fillRect(onPixels(painter, edge), theme_.palette().separator);
}

} // namespace ventolith::ui
