#include "platform/linux/desktop/KernelEvents.h"

#include <boost/asio/posix/stream_descriptor.hpp>

#include <sys/socket.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstddef>
#include <optional>
#include <utility>

namespace ventolith::platform {

using boost::asio::posix::stream_descriptor;

namespace {

constexpr unsigned kernelGroup = 1; // The other, 2, is what udev says about the same.

/// So many notices are read before other work of the thread has its turn.
constexpr int noticesInARow = 16;

/// The kernel's longest has 2048 bytes of values and a path before them.
using Buffer = std::array<char, 8192>;

/// What one read of the socket came to.
enum class Heard { powerSupply, somethingElse, nothing, failure };

/// Interrupted reads, and notices that the kernel dropped since nobody took them in time, pass.
Heard heardOf(int error) {
  switch (error) {
  case EAGAIN: return Heard::nothing;
  case EINTR: return Heard::somethingElse;
  case ENOBUFS: return Heard::powerSupply; // It might have been among them.
  default: return Heard::failure;
  }
}

Heard hear(int socket) {
  Buffer buffer;
  sockaddr_nl sender{};
  socklen_t length = sizeof(sender);
  const ssize_t count = ::recvfrom(socket, buffer.data(), buffer.size(), MSG_DONTWAIT,
                                   reinterpret_cast<sockaddr*>(&sender), &length);
  if (count < 0) return heardOf(errno);
  const std::string_view datagram(buffer.data(), static_cast<std::size_t>(count));
  return isPowerSupplyNotice(sender, datagram) ? Heard::powerSupply : Heard::somethingElse;
}

} // namespace

Descriptor openKernelEvents() {
  Descriptor socket(::socket(AF_NETLINK, SOCK_RAW | SOCK_CLOEXEC | SOCK_NONBLOCK, NETLINK_KOBJECT_UEVENT));
  sockaddr_nl address{};
  address.nl_family = AF_NETLINK;
  address.nl_groups = kernelGroup;
  if (!socket.isOpen() ||
      ::bind(socket.get(), reinterpret_cast<const sockaddr*>(&address), sizeof(address)) != 0) {
    return Descriptor(-1);
  }
  return socket;
}

bool isPowerSupplyNotice(const sockaddr_nl& sender, std::string_view datagram) {
  if (sender.nl_pid != 0) return false;
  while (!datagram.empty()) {
    const std::string_view line = datagram.substr(0, datagram.find('\0'));
    if (line == "SUBSYSTEM=power_supply") return true;
    datagram.remove_prefix(std::min(line.size() + 1, datagram.size()));
  }
  return false;
}

class PowerSupplyEvents::Listening : public std::enable_shared_from_this<Listening> {
public:
  Listening(const runtime::Executor& executor, Descriptor socket, std::function<void()> onNotice)
      : socket_(executor, socket.release()), onNotice_(std::move(onNotice)) {}

  void wait() {
    socket_.async_wait(stream_descriptor::wait_read,
                       [weak = weak_from_this()](const boost::system::error_code& error) {
                         const auto self = weak.lock();
                         if (self && !error) self->takeSome();
                       });
  }

  void end() { socket_.close(); }

private:
  void takeSome() {
    bool isNoticed = false;
    Heard heard = Heard::somethingElse;
    for (int notice = 0; notice < noticesInARow; ++notice) {
      heard = hear(socket_.native_handle());
      if (heard == Heard::nothing || heard == Heard::failure) break;
      isNoticed |= heard == Heard::powerSupply;
    }
    if (isNoticed) onNotice_();
    if (heard != Heard::failure && socket_.is_open()) wait();
  }

  stream_descriptor socket_;
  std::function<void()> onNotice_;
};

PowerSupplyEvents::PowerSupplyEvents(const runtime::Executor& executor, Descriptor socket,
                                     std::function<void()> onNotice) {
  if (!socket.isOpen()) return;
  listening_ = std::make_shared<Listening>(executor, std::move(socket), std::move(onNotice));
  listening_->wait();
}

PowerSupplyEvents::~PowerSupplyEvents() {
  if (listening_) listening_->end();
}

} // namespace ventolith::platform
