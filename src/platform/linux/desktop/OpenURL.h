// Shows a web page to the user.
#pragma once

#include <string>

namespace ventolith::platform {

/// Hands `url` to the user's browser by `xdg-open`, which is looked for in the absolute folders of PATH, and
/// waits for neither. The browser is no child of this process, outlives it, and has none of its open files,
/// but its environment. What is no web address (http or https, with a host) opens nothing; that, and a system
/// without xdg-open, is told on standard error. From any thread.
void openURL(const std::string& url);

} // namespace ventolith::platform
