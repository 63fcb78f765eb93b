#include "ui/ModelView.h"

#include <QShowEvent>

#include <utility>

namespace ventolith::ui {

ModelView::ModelView(const ViewContext& context, Fields shown, QWidget* parent)
    : QWidget(parent), context_(context), shown_(shown), missed_(shown) {
  connect(&context.watch, &ModelWatch::changed, this, &ModelView::take);
}

void ModelView::take(Fields changed) {
  const Fields ours = changed & shown_;
  if (ours.isEmpty()) return;
  if (isVisible() && !window()->isMinimized())
    refresh(ours);
  else
    missed_ |= ours;
}

void ModelView::catchUp() {
  const Fields missed = std::exchange(missed_, {});
  if (!missed.isEmpty()) refresh(missed);
}

void ModelView::showEvent(QShowEvent* event) {
  catchUp();
  QWidget::showEvent(event);
}

} // namespace ventolith::ui
