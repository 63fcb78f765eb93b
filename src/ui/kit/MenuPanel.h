// A menu that opens beside a control.
#pragma once

#include "ui/kit/Symbol.h"

#include <QMenu>
#include <QPointer>

#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace ventolith::ui {

class Theme;
class MenuStyle;

enum class MenuRole { normal, destructive };

/// How a row shows that it is in force.
enum class MenuMark {
  none,
  prefixed, ///< "✓ " before its title; its symbol stays.
  column    ///< A check mark in the place of the symbol, which all rows of the menu leave free.
};

struct MenuRow {
  QString title; ///< Ampersands are ordinary characters.
  std::optional<Symbol> symbol;
  MenuMark mark = MenuMark::none;
  MenuRole role = MenuRole::normal;
  bool isEnabled = true;
  QString toolTip;              ///< Why it is disabled, for example. None when empty.
  std::function<void()> action; ///< Called after the menu has closed.
  bool isDivider = false;       ///< Nothing but a line.

  [[nodiscard]] static MenuRow divider();
  /// With its mark, if that is a part of it.
  [[nodiscard]] QString titleShown() const;
};

/// Keyboard, first letters, press-drag-release, scrolling of long menus and what assistive technology sees
/// are QMenu's; the look is the house's.
class MenuPanel final : public QMenu {
  Q_OBJECT

public:
  static constexpr int padding = 6; // The stroke included.
  static constexpr int rowHeight = 26;
  static constexpr int rowPadding = 8;
  static constexpr int iconSide = 15;
  static constexpr int iconGap = 9;
  static constexpr int dividerInset = 8;
  static constexpr int dividerMargin = 5;

  explicit MenuPanel(const Theme& theme, QWidget* parent = nullptr);
  ~MenuPanel() override;

  /// Replaces all rows; an open menu shows them at once, and the row of the same title (the same one of
  /// several) is the chosen one still.
  void setRows(std::vector<MenuRow> rows);
  [[nodiscard]] const std::vector<MenuRow>& rows() const { return rows_; }
  [[nodiscard]] const MenuRow* rowOf(const QAction* action) const;
  [[nodiscard]] QAction* actionOf(int row) const;
  /// The panel is at least this wide.
  void setMinimumPanelWidth(int width);
  /// One of the rows has something where the symbol stands, so all titles begin behind it.
  [[nodiscard]] bool hasIconColumn() const { return hasIconColumn_; }

  /// Opens 5 below the control with the leading edges aligned, above it where there is no room below, with
  /// `current` chosen if that is a row.
  void openAt(QWidget& anchor, int current = -1);

  /// The panel within the window, whose margins hold the shadow if there is one.
  [[nodiscard]] QRect panel() const;

protected:
  bool event(QEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void initStyleOption(QStyleOptionMenuItem* option, const QAction* action) const override;

private:
  [[nodiscard]] QAction* makeAction(const MenuRow& row);
  void takeShadow();

  const Theme& theme_;
  std::unique_ptr<MenuStyle> style_;
  std::vector<MenuRow> rows_;
  std::vector<QAction*> actions_; // Children, one a row.
  QPointer<QWidget> anchor_;
  bool hasIconColumn_ = false;
};

} // namespace ventolith::ui
