// The model's changes, as a window takes them: gathered, and told once for each turn of the event loop.
#pragma once

#include "app/AppModel.h"
#include "runtime/Observable.h"

#include <QObject>

#include <memory>

namespace ventolith::ui {

/// One for the application, made before its first view. Changes of the helper's registration are told as a
/// change of the field `helperManager`. On the main thread; the model outlives it.
class ModelWatch : public QObject {
  Q_OBJECT

public:
  using Fields = app::AppModel::Fields;

  explicit ModelWatch(app::AppModel& model, QObject* parent = nullptr);
  ~ModelWatch() override;

Q_SIGNALS:
  /// They have their new values by now.
  void changed(ventolith::ui::ModelWatch::Fields fields);

private:
  void note(Fields fields);
  void tell();
  void observeManager();

  app::AppModel& model_;
  Fields changing_;
  runtime::Observation ofModel_;
  runtime::Observation ofManager_;
};

} // namespace ventolith::ui
