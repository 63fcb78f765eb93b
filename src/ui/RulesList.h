// The rules in their order, which is theirs to be moved in: by drag, and by keyboard.
#pragma once

#include "ui/ModelView.h"
#include "ui/kit/Pulse.h"
#include "ui/state/RuleEditing.h"

#include <QPoint>

#include <cstddef>
#include <memory>
#include <optional>
#include <vector>

namespace ventolith::ui {

class DragShadow;
class RuleRow;

/// One row below the other, told of the rules by the screen that holds it. A row follows its rule: where the
/// rules are still the same, so are the rows, with whatever the user does in them.
///
/// A row is dragged by its card, and leaves a gap of its own height where it would drop; Escape lets it
/// return. Alt+Up and Alt+Down move the row that holds the keyboard, itself or in one of its controls; Up and
/// Down go from row to row.
class RulesList final : public QWidget {
  Q_OBJECT

public:
  static constexpr int gap = 10;

  /// The keyboard comes to the rows after `before`, a control of the same window.
  RulesList(const ViewContext& context, QWidget& before, QWidget* parent = nullptr,
            std::unique_ptr<Pulse> pulse = std::make_unique<TimerPulse>());
  ~RulesList() override;

  /// Shows the model's rules.
  void refresh();

  [[nodiscard]] const std::vector<RuleRow*>& rows() const { return rows_; }
  [[nodiscard]] bool isDragging() const { return drag_ && drag_->isMoving; }
  /// Where the row stands, or will when nothing moves any more.
  [[nodiscard]] QRect slot(std::size_t place) const;

  enum class Step { up, down };
  [[nodiscard]] bool canMove(const RuleRow& row, Step step) const;
  /// By one place, if there is one.
  void moveRow(const RuleRow& row, Step step);
  void focusRow(std::size_t place, Qt::FocusReason reason);

  [[nodiscard]] QSize sizeHint() const override;
  [[nodiscard]] QSize minimumSizeHint() const override { return sizeHint(); }

Q_SIGNALS:
  /// This part is to be seen, since the user moves something there. In the list's own coordinates.
  void isWorkedOn(const QRect& part);

protected:
  void hideEvent(QHideEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;

private:
  /// A row under the pointer, which moves once the pointer has gone far enough.
  struct Drag {
    std::size_t place;
    QPoint pressed; // Global.
    QPoint pointer; // Global.
    int grip;       // From the row's top to the pointer.
    bool isMoving = false;
  };
  enum class Motion { instant, sliding };

  [[nodiscard]] std::optional<std::size_t> placeOf(const QWidget* widget) const;
  [[nodiscard]] std::optional<std::size_t> placeOfFocus() const;
  [[nodiscard]] std::vector<int> topsInOrder(const std::vector<std::size_t>& order) const;
  [[nodiscard]] std::vector<int> tops() const;
  [[nodiscard]] std::size_t dropGap() const;
  [[nodiscard]] std::optional<RuleMove> stepMove(const RuleRow& row, Step step) const;
  void takeRules();
  void place(Motion motion);
  void slide(RuleRow& row, QPoint to, Motion motion) const;
  void dragTo(QPoint global);
  void scrollAlong();
  void beginMoving();
  void drop();
  void cancelDrag();
  void move(const RuleMove& move);
  void moveFocusedRow(Step step);
  void settleStops();

  const ViewContext& context_;
  QWidget& before_;
  DragShadow* shadow_;         // A child, below the row that is dragged.
  std::vector<RuleRow*> rows_; // Children.
  std::optional<Drag> drag_;
  std::unique_ptr<Pulse> pulse_; // While the row in hand is held beyond what is in sight.
};

} // namespace ventolith::ui
