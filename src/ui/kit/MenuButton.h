// Buttons that open a menu.
#pragma once

#include "ui/kit/Button.h"
#include "ui/kit/MenuPanel.h"

#include <functional>
#include <vector>

namespace ventolith::ui {

enum class MenuButtonKind {
  pullDown, ///< Bordered, with a chevron: names what is in force.
  inLine,   ///< A word of a sentence, in `accent`, with chevrons.
  symbol    ///< A symbol alone.
};

/// The rows are asked for each time that the menu opens. It opens on the press, so that press, drag and
/// release choose in one go; Space, Return and the arrow keys open it, too.
class MenuButton : public Button {
  Q_OBJECT

public:
  MenuButton(const Theme& theme, MenuButtonKind kind, QWidget* parent = nullptr);

  /// Normal unless told otherwise; a pull-down button alone comes in two sizes.
  void setSize(ButtonSize size);
  void setRows(std::function<std::vector<MenuRow>()> rows);
  void setMinimumMenuWidth(int width);
  void openMenu();
  /// Asks for the rows of an open menu again.
  void refreshMenu();
  [[nodiscard]] bool isMenuOpen() const { return menu_->isVisible(); }
  [[nodiscard]] MenuPanel& menu() const { return *menu_; }

protected:
  /// The row that is chosen when the menu has opened; none below zero.
  [[nodiscard]] virtual int currentRow() const { return -1; }
  void keyPressEvent(QKeyEvent* event) override;

private:
  MenuButtonKind kind_;
  MenuPanel* menu_; // A child.
  std::function<std::vector<MenuRow>()> rows_;
};

} // namespace ventolith::ui
