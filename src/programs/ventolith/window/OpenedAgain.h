// A second start, on a system that starts no program twice.
#pragma once

#include <QObject>

#include <functional>
#include <memory>

namespace ventolith::programs {

/// Calls back on the main thread whenever the user opens the application that runs already, for as long as
/// the result stands. Made before the event loop runs. None on a system that starts a second process instead,
/// which is heard of elsewhere (SingleInstance).
[[nodiscard]] std::unique_ptr<QObject> whenOpenedAgain(std::function<void()> opened);

} // namespace ventolith::programs
