// A line between application and helper inside one process: for tests, and for whoever wants both ends in one
// program.
#pragma once

#include "helper/link/HelperChannel.h"
#include "helper/link/HelperListener.h"

#include <cstddef>
#include <memory>
#include <string>

namespace ventolith::helper {

/// One helper at a time, and any number of channels to it. Messages of a channel arrive in order, each
/// channel is a caller of its own, and a call waits for as long as the service holds its answer back. A
/// message that finds no helper is not delivered; one that finds a listener which has not been resumed waits
/// for that.
///
/// Both ends belong to the thread of one executor, and may outlive this object. Faults are switched on by the
/// operations below; what they set off runs on the executor.
class InProcessLink {
public:
  explicit InProcessLink(const runtime::Executor& executor);

  [[nodiscard]] HelperChannelFactory channels();

  /// The helper comes up. There is none but this from here on: fails with std::logic_error if there is one.
  [[nodiscard]] std::unique_ptr<HelperListener> claimListener();

  /// The helper dies without a word: calls under way end without a reply, channels are interrupted. The
  /// listener is dead from here on, and tells nobody. Work that its service has begun goes on, so the service
  /// stays.
  void killHelper();

  /// The helper is cut off, and learns it: as `killHelper`, and the listener's `lost` is called.
  void loseHelper(const std::string& reason);

  /// Every channel is gone for good; new ones open again. The helper stays, and sees its callers go.
  void breakChannels();

  /// From here on no channel opens: those that are open break, and new ones do so at their first use.
  void setReachable(bool isReachable);

  /// How many channels were made so far.
  [[nodiscard]] std::size_t channelsMade() const;

private:
  struct Hub;
  class Channel;
  class Listener;

  std::shared_ptr<Hub> hub_;
};

} // namespace ventolith::helper
