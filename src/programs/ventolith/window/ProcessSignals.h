// The signals that ask a process to end, as events of Qt's loop.
#pragma once

#include "platform/system/Descriptor.h"

#include <QObject>
#include <QSocketNotifier>

#include <memory>

namespace ventolith::programs {

/// Made before the process has a second thread, which would take the signals for itself: from then on SIGINT,
/// SIGTERM and SIGHUP end nothing by themselves. One that was ignored from the start stays so.
class ProcessSignals : public QObject {
  Q_OBJECT

public:
  ProcessSignals();
  ~ProcessSignals() override;

  /// `asked` is emitted from here on, for signals that came before too. Needs the application object.
  void listen();

Q_SIGNALS:
  void asked();

private:
  platform::Descriptor signals_;
  std::unique_ptr<QSocketNotifier> notifier_;
};

} // namespace ventolith::programs
