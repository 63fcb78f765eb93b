// One application for each user: a second start brings the first to the front.
#pragma once

#include <QLocalServer>
#include <QObject>
#include <QString>

namespace ventolith::programs {

/// Where the instance that runs listens: in the folder for what lasts as long as the user's session, else in
/// the one for temporary files, under a name with the user's number.
[[nodiscard]] QString instanceAddress();

/// Needs the application object.
class SingleInstance : public QObject {
  Q_OBJECT

public:
  explicit SingleInstance(QString address = instanceAddress());

  /// True if this process is the one, which hears of later starts from here on. False if another one is: that
  /// one has been told. Where nobody can listen, everybody is the one.
  [[nodiscard]] bool claim();

Q_SIGNALS:
  void startedAgain();

private:
  [[nodiscard]] bool tellTheOther() const;
  void greet();

  QString address_;
  QLocalServer server_;
};

} // namespace ventolith::programs
