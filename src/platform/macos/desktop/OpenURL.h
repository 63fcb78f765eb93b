// Shows a web page to the user.
#pragma once

#include <string>

namespace ventolith::platform {

/// Hands `url` to the user's browser, and does not wait for it. What is no web address (http or https, with a
/// host) opens nothing; that, and a system that cannot open it, is told on standard error. From any thread.
void openURL(const std::string& url);

} // namespace ventolith::platform
