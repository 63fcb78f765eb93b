// The application's place in the system's status area.
#pragma once

#include <QIcon>
#include <QObject>
#include <QRect>
#include <QString>

#include <memory>

namespace ventolith::ui {

struct StatusItemLabel {
  QString text;    // "82° 5921rpm"; empty with the icon alone.
  QIcon picture;   // The same drawn, for an area that shows no text.
  QString meaning; // "Ventolith: 82° 5921rpm": for a tool tip, and for who does not see it.
};

/// On the main thread.
class StatusItem : public QObject {
  Q_OBJECT

public:
  virtual void setLabel(const StatusItemLabel& label) = 0;
  /// Where the desktop has no status area yet, the item appears as soon as there is one.
  virtual void show() = 0;
  /// Whether it is shown in a status area now.
  [[nodiscard]] virtual bool isShown() const = 0;
  /// Where it is, as screens are counted in Qt; invalid where the desktop does not tell.
  [[nodiscard]] virtual QRect place() const = 0;

Q_SIGNALS:
  /// By either button of the pointer, or without one.
  void pressed();
};

/// This system's, not shown yet.
[[nodiscard]] std::unique_ptr<StatusItem> makeStatusItem();

} // namespace ventolith::ui
