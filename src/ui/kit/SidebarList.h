// The list of screens at the window's leading edge.
#pragma once

#include "ui/kit/ControlFeel.h"
#include "ui/kit/Symbol.h"

#include <QListWidget>

#include <memory>
#include <vector>

namespace ventolith::ui {

struct SidebarRow {
  Symbol symbol = Symbol::info;
  QString title;
};

/// One row is chosen (`currentRowChanged`), by pointer, arrow keys or first letters. It paints the sidebar's
/// surface and keeps its margins.
class SidebarList final : public QListWidget {
  Q_OBJECT

public:
  static constexpr int rowHeight = 30;
  static constexpr int rowGap = 2;
  static constexpr int margin = 10;
  static constexpr int firstRow = 56;
  static constexpr int rowPadding = 9;
  static constexpr int iconSide = 17;
  static constexpr int iconGap = 9;

  explicit SidebarList(const Theme& theme, QWidget* parent = nullptr);
  ~SidebarList() override;

  /// The first row is chosen, without a signal.
  void setRows(const std::vector<SidebarRow>& rows);
  [[nodiscard]] QSize sizeHint() const override;
  /// Of the row, in the list's own coordinates.
  [[nodiscard]] QRectF rowRect(int row) const;

protected:
  bool viewportEvent(QEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;

private:
  class RowPainter;
  void takeColors();
  void choose(int row);
  void hover(int row);
  void paintRow(QPainter& painter, const QRect& rect, int row) const;
  [[nodiscard]] double chosenPart(int row) const;

  const Theme& theme_;
  std::vector<SidebarRow> rows_;
  std::unique_ptr<RowPainter> rowPainter_;
  Transition selection_;
  Transition hovering_;
  int hoveredRow_ = -1;
  int chosenRow_ = -1;
  int formerRow_ = -1;
  ControlFeel feel_;
};

} // namespace ventolith::ui
