// The signals that ask a process to end, as events of Qt's loop.
#pragma once

#include <QObject>

#include <memory>

namespace ventolith::programs {

/// Made before the process has a second thread, which would take the signals for itself: from then on SIGINT,
/// SIGTERM and SIGHUP end nothing by themselves. One that was ignored from the start stays so. One a process.
class ProcessSignals : public QObject {
  Q_OBJECT

public:
  /// Fails with std::system_error.
  ProcessSignals();
  ~ProcessSignals() override;

  /// `asked` is emitted from here on, for signals that came before too. Needs the application object.
  void listen();

Q_SIGNALS:
  void asked();

private:
  class Source; // The system's.
  std::unique_ptr<Source> source_;
};

} // namespace ventolith::programs
