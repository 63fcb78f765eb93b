// A layout of equally wide columns, as many as the width has room for.
#pragma once

#include <QLayout>

#include <vector>

namespace ventolith::ui {

class AdaptiveGrid : public QLayout {
  Q_OBJECT

public:
  /// Columns are at least `minimum` wide unless there is but one, and `gap` apart, rows as well.
  AdaptiveGrid(int minimum, int gap, QWidget* parent = nullptr);
  ~AdaptiveGrid() override;

  /// max(1, floor((width + gap) / (minimum + gap))).
  [[nodiscard]] static int columnsFor(int width, int minimum, int gap);

  /// Never more columns than items, so that few of them fill the width.
  void setFillsWidth(bool fills);
  /// How far items reach beyond their cells on each side: room for a shadow.
  void setOutset(int outset);
  /// The columns at its present width.
  [[nodiscard]] int columns() const;

  void addItem(QLayoutItem* item) override;
  [[nodiscard]] int count() const override;
  [[nodiscard]] QLayoutItem* itemAt(int index) const override;
  [[nodiscard]] QLayoutItem* takeAt(int index) override;
  [[nodiscard]] Qt::Orientations expandingDirections() const override { return Qt::Horizontal; }
  [[nodiscard]] bool hasHeightForWidth() const override { return true; }
  [[nodiscard]] int heightForWidth(int width) const override;
  [[nodiscard]] QSize sizeHint() const override;
  [[nodiscard]] QSize minimumSize() const override;
  void setGeometry(const QRect& rect) override;
  void invalidate() override;

private:
  [[nodiscard]] std::vector<QLayoutItem*> shownItems() const;
  [[nodiscard]] int columnsAt(int width, int items) const;
  // Places the items in `area` if `places`; returns the height that they take.
  int arrange(const QRect& area, bool places) const;

  int minimum_;
  int gap_;
  int outset_ = 0;
  bool fillsWidth_ = false;
  std::vector<QLayoutItem*> items_; // Owned: Qt hands them over raw.
  mutable int knownWidth_ = -1;
  mutable int knownHeight_ = 0;
};

} // namespace ventolith::ui
