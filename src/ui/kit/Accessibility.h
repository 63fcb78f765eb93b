// What assistive technology is told about the kit's own controls: roles, names, values, states, actions.
//
// Controls that Qt knows (buttons, check boxes, fields, lists, menus) speak for themselves.
#pragma once

#include <QtGlobal>

QT_BEGIN_NAMESPACE
class QWidget;
QT_END_NAMESPACE

namespace ventolith::ui {

/// Makes the kit's controls known to Qt, once a process: their constructors call it.
void installAccessibility();

/// Tells whoever listens that the control has another value, or that its menu is open or closed now.
void announceValue(QWidget& control);
void announceExpanded(QWidget& control);

} // namespace ventolith::ui
