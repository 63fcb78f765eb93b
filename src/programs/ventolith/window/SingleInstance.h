// One application for each user: a second start brings the first to the front.
#pragma once

#include <QLocalServer>
#include <QObject>
#include <QString>

#include <optional>
#include <string>

namespace ventolith::programs {

/// Where the instance that runs listens: in the folder for what lasts as long as the user's session, else in
/// the one for temporary files, under a name with the user's number. What two instances must not share is the
/// helper, so one that talks to it over another `bus` than the system's (its address) has a name of its own.
[[nodiscard]] QString instanceAddress(const std::optional<std::string>& bus);

/// Needs the application object.
class SingleInstance : public QObject {
  Q_OBJECT

public:
  explicit SingleInstance(QString address);

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
