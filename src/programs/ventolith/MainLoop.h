// What the system tells a process on its main thread, and nowhere else.
#pragma once

#include <functional>

namespace ventolith::programs {

/// Runs `work` to its end while the main thread hears the system out, where the system speaks to that thread
/// alone: a Mac tells it of the power source. There `work` has a thread of its own; elsewhere it runs here.
///
/// For a process without a window, whose event loop would do the same. Called on the main thread. What `work`
/// throws is thrown here.
void runBesideMainLoop(const std::function<void()>& work);

} // namespace ventolith::programs
