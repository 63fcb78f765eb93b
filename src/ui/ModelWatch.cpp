#include "ui/ModelWatch.h"

#include <QMetaObject>

#include <utility>

namespace ventolith::ui {

using app::AppModelField;

ModelWatch::ModelWatch(app::AppModel& model, QObject* parent)
    : QObject(parent), model_(model), ofModel_(model.observe([this](Fields fields) { note(fields); })) {
  observeManager();
}

ModelWatch::~ModelWatch() = default;

void ModelWatch::note(Fields fields) {
  const bool isDue = changing_.isEmpty();
  changing_ |= fields;
  if (isDue) QMetaObject::invokeMethod(this, [this] { tell(); }, Qt::QueuedConnection);
}

void ModelWatch::tell() {
  const Fields fields = std::exchange(changing_, {});
  if (fields.contains(AppModelField::helperManager)) observeManager();
  Q_EMIT changed(fields);
}

void ModelWatch::observeManager() {
  if (!model_.helperManager()) return;
  ofManager_ = model_.helperManager()->observe([this](auto) { note({AppModelField::helperManager}); });
}

} // namespace ventolith::ui
