// The head of the menu bar's panel: the hottest sensor and what runs now, and a row of chips for the first
// sensors.
#pragma once

#include "ui/kit/Theme.h"
#include "ui/state/MenuBarContent.h"

#include <QWidget>

#include <optional>
#include <vector>

QT_BEGIN_NAMESPACE
class QHBoxLayout;
QT_END_NAMESPACE

namespace ventolith::ui {

class Dot;
class IconView;
class TextLabel;

class MenuBarHeader final : public QWidget {
  Q_OBJECT

public:
  explicit MenuBarHeader(const Theme& theme, QWidget* parent = nullptr);

  void setContent(const PanelHeaderContent& content);

private:
  std::optional<PanelHeaderContent> shown_;
  Dot* dot_;
  IconView* symbol_; // In place of the dot, without sensors.
  TextLabel* title_;
  TextLabel* statusWord_;
  TextLabel* temperature_;
};

/// Names give way to figures where the row is too narrow for both, the longest of them first.
class SensorChipsRow final : public QWidget {
  Q_OBJECT

public:
  explicit SensorChipsRow(const Theme& theme, QWidget* parent = nullptr);

  void setChips(const std::vector<SensorChipContent>& chips);

protected:
  void resizeEvent(QResizeEvent* event) override;

private:
  struct Chip {
    QWidget* all;
    Dot* dot;
    TextLabel* name;
    TextLabel* temperature;
  };
  [[nodiscard]] Chip addChip();
  void shareRoom();

  const Theme& theme_;
  QHBoxLayout* row_;
  std::vector<Chip> chips_;
};

} // namespace ventolith::ui
