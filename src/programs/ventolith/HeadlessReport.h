// What the application publishes, as lines of text.
#pragma once

#include "app/AppModel.h"
#include "runtime/Observable.h"

#include <functional>
#include <memory>
#include <string>

namespace ventolith::programs {

/// Writes each published field as "name: value" when it has changed, once for all changes of one turn of the
/// event loop. Records are written as they are stored, in one line of JSON. Lives on the main executor.
class HeadlessReport {
public:
  using Write = std::function<void(const std::string& line)>;

  /// Writes every field at first. `model` outlives the report.
  HeadlessReport(runtime::Executor mainExecutor, app::AppModel& model, Write write);

private:
  struct State;

  std::shared_ptr<State> state_;
};

/// The field's line. Numbers are rounded for people.
[[nodiscard]] std::string reportLine(const app::AppModel& model, app::AppModelField field);

} // namespace ventolith::programs
