// What assistive technology is told about the rules: a list, whose items can be moved.
#pragma once

namespace ventolith::ui {

/// Makes RulesList and RuleRow known to Qt, once a process: the list's constructor calls it.
void installRulesAccessibility();

} // namespace ventolith::ui
