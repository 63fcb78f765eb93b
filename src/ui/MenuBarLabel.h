// What stands in the system's status area: the fan, the hottest temperature and the fastest fan's speed.
#pragma once

#include "ui/ModelView.h"
#include "ui/state/MenuBarContent.h"

#include <QIcon>
#include <QObject>
#include <QRectF>

QT_BEGIN_NAMESPACE
class QPainter;
QT_END_NAMESPACE

namespace ventolith::ui {

/// A tray does not tell its ground: the label brings a plate of its own, which is hardly seen where tray and
/// theme agree, and on which it can be read where they do not.
struct LabelInk {
  QColor ink;
  QColor plate;

  bool operator==(const LabelInk&) const = default;
};

/// Fills the square of `rect`, as a tray shows it: two lines of text if there are two; one line with the icon
/// above; or the icon alone.
void paintLabel(QPainter& painter, const QRectF& rect, const MenuBarLabelContent& content,
                const LabelInk& ink, const Icons& icons);

/// Follows the model for as long as it lives, since it is always seen.
class MenuBarLabel final : public QObject {
  Q_OBJECT

public:
  explicit MenuBarLabel(const ViewContext& context, QObject* parent = nullptr);

  /// For a tray, which shows no text: painted at whatever size and scale it is asked for. The theme outlives
  /// it.
  [[nodiscard]] QIcon picture() const;
  /// "82° 5921rpm": for a menu bar, a tool tip, and for who does not see the picture. Empty with the icon
  /// alone.
  [[nodiscard]] QString text() const;

Q_SIGNALS:
  /// Its picture is another now: not for every reading, but for every one that reads differently.
  void changed();

private:
  void take();
  void takeInk();

  const ViewContext& context_;
  MenuBarLabelContent content_;
  LabelInk ink_;
};

} // namespace ventolith::ui
