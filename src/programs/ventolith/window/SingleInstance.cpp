#include "programs/ventolith/window/SingleInstance.h"

#include <QCryptographicHash>
#include <QLocalSocket>
#include <QStandardPaths>

#include <unistd.h>

#include <utility>

namespace ventolith::programs {

namespace {

constexpr int answerTime = 1000; // Milliseconds.

} // namespace

QString instanceAddress(const std::optional<std::string>& bus) {
  QString folder = QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation);
  if (folder.isEmpty()) folder = QStandardPaths::writableLocation(QStandardPaths::TempLocation);
  const QString address = QStringLiteral("%1/ventolith-%2").arg(folder).arg(::getuid());
  if (!bus) return address;
  const QByteArray digest =
      QCryptographicHash::hash(QByteArray::fromStdString(*bus), QCryptographicHash::Sha256);
  return address + u'-' + QString::fromLatin1(digest.toHex().first(16));
}

SingleInstance::SingleInstance(QString address) : address_(std::move(address)) {
  server_.setSocketOptions(QLocalServer::UserAccessOption);
  connect(&server_, &QLocalServer::newConnection, this, &SingleInstance::greet);
}

bool SingleInstance::claim() {
  if (tellTheOther()) return false;
  server_.listen(address_); // In the place of what one that was killed has left behind.
  return true;
}

bool SingleInstance::tellTheOther() const {
  QLocalSocket socket;
  socket.connectToServer(address_);
  return socket.waitForConnected(answerTime);
}

/// To connect is all that there is to say.
void SingleInstance::greet() {
  while (QLocalSocket* const caller = server_.nextPendingConnection())
    caller->deleteLater();
  Q_EMIT startedAgain();
}

} // namespace ventolith::programs
