#include "ui/MenuBarActionRow.h"

#include "ui/kit/Metrics.h"
#include "ui/state/MenuBarContent.h"

#include <QHBoxLayout>

namespace ventolith::ui {

MenuBarActionRow::MenuBarActionRow(const ViewContext& context, QWidget* parent)
    : QWidget(parent), update_(new UpdateCheckButton(context, ButtonKind::borderless)) {
  const MenuBarTexts texts = menuBarTexts();
  auto* support = new Button(context.theme, ButtonKind::borderless, ButtonSize::normal);
  support->setTitle(texts.support);
  support->setEnabled(context.hasSupportPage);
  auto* quit = new Button(context.theme, ButtonKind::borderless, ButtonSize::normal);
  quit->setTitle(texts.quit);

  auto* row = new QHBoxLayout(this);
  row->setContentsMargins(0, 0, 0, 0);
  row->setSpacing(metrics::space6);
  row->addWidget(update_);
  row->addStretch();
  row->addWidget(support);
  row->addWidget(quit);

  connect(support, &Button::clicked, this, [this, &context] {
    Q_EMIT left();
    context.model.openSupport();
  });
  connect(quit, &Button::clicked, this, [&context] { context.quit(); });
}

} // namespace ventolith::ui
