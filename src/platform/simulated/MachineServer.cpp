#include "platform/simulated/MachineServer.h"

#include "platform/simulated/MachineProtocol.h"

#include <boost/asio/io_context.hpp>
#include <boost/asio/local/stream_protocol.hpp>
#include <boost/asio/read.hpp>
#include <boost/asio/redirect_error.hpp>
#include <boost/asio/write.hpp>
#include <fmt/format.h>

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <set>
#include <stdexcept>
#include <system_error>
#include <utility>

namespace ventolith::simulated {

namespace {

using boost::asio::redirect_error;
using boost::asio::use_awaitable;
using boost::system::error_code;
using Protocol = boost::asio::local::stream_protocol;
using runtime::Async;

constexpr std::size_t mostSessions = 64;

/// One client: its socket, and what it has opened.
struct Session {
  explicit Session(Protocol::socket accepted) : socket(std::move(accepted)) {}

  Protocol::socket socket;
  std::set<hardware::IOConnect> connections;
};

Async<std::optional<FrameBytes>> readFrame(Protocol::socket& socket) {
  std::array<std::uint8_t, frameHeaderSize> header{};
  error_code error;
  co_await boost::asio::async_read(socket, boost::asio::buffer(header), redirect_error(use_awaitable, error));
  if (error) co_return std::nullopt;
  const auto length = announcedLength(header);
  if (!length) co_return std::nullopt;
  FrameBytes frame(*length);
  co_await boost::asio::async_read(socket, boost::asio::buffer(frame), redirect_error(use_awaitable, error));
  if (error) co_return std::nullopt;
  co_return frame;
}

Async<bool> writeFrame(Protocol::socket& socket, const FrameBytes& frame) {
  const auto header = frameHeader(frame.size());
  const std::array buffers{boost::asio::buffer(header), boost::asio::buffer(frame)};
  error_code error;
  co_await boost::asio::async_write(socket, buffers, redirect_error(use_awaitable, error));
  co_return !error;
}

Async<void> serve(std::shared_ptr<SimulatedMac> mac, std::shared_ptr<Session> session) {
  while (true) {
    const auto request = co_await readFrame(session->socket);
    if (!request) break;
    const auto reply = answerRequest(*mac, session->connections, *request);
    if (!reply) break;
    const bool isWritten = co_await writeFrame(session->socket, *reply);
    if (!isWritten) break;
  }
  for (const hardware::IOConnect connection : session->connections)
    mac->close(connection);
  error_code ignored;
  session->socket.close(ignored);
}

[[noreturn]] void failAt(const std::string& path, std::string_view reason) {
  throw std::runtime_error(fmt::format("{}: {}", path, reason));
}

Protocol::endpoint endpointAt(const std::string& path) {
  try {
    return Protocol::endpoint(path);
  } catch (const boost::system::system_error&) {
    failAt(path, "too long for the path of a socket");
  }
}

/// Removes a socket file that nobody answers on any more.
void removeStaleSocket(const std::string& path) {
  struct stat found{};
  if (::lstat(path.c_str(), &found) != 0) {
    if (errno == ENOENT) return;
    failAt(path, std::generic_category().message(errno));
  }
  if (!S_ISSOCK(found.st_mode)) failAt(path, "exists and is no socket");
  boost::asio::io_context context;
  Protocol::socket probe(context);
  error_code error;
  probe.connect(endpointAt(path), error);
  if (!error) failAt(path, "a simulator is running there already");
  if (error != boost::asio::error::connection_refused) failAt(path, error.message());
  ::unlink(path.c_str());
}

} // namespace

struct MachineServer::State {
  State(const runtime::Executor& executor, std::shared_ptr<SimulatedMac> served, std::string at)
      : mac(std::move(served)), path(std::move(at)), acceptor(executor) {}

  std::shared_ptr<SimulatedMac> mac;
  std::string path;
  Protocol::acceptor acceptor;
  std::set<std::shared_ptr<Session>> sessions;
  struct stat file{}; // The socket file as it was made.
};

MachineServer::MachineServer(const runtime::Executor& executor, std::shared_ptr<SimulatedMac> mac,
                             const std::string& path)
    : state_(std::make_shared<State>(executor, std::move(mac), path)) {
  const Protocol::endpoint endpoint = endpointAt(path);
  removeStaleSocket(path);
  error_code error;
  state_->acceptor.open(endpoint.protocol(), error);
  if (!error) state_->acceptor.bind(endpoint, error);
  if (!error) state_->acceptor.listen(boost::asio::socket_base::max_listen_connections, error);
  if (error) failAt(path, error.message());
  if (::lstat(path.c_str(), &state_->file) != 0) failAt(path, std::generic_category().message(errno));
  runtime::start(executor, "simulator's listener", accept(state_));
}

MachineServer::~MachineServer() {
  stop();
}

Async<void> MachineServer::accept(std::shared_ptr<State> state) {
  while (state->acceptor.is_open()) {
    error_code error;
    Protocol::socket socket = co_await state->acceptor.async_accept(redirect_error(use_awaitable, error));
    if (error == boost::asio::error::connection_aborted) continue;
    if (error) co_return;
    if (state->sessions.size() >= mostSessions) continue; // The socket closes as it goes.
    const auto session = std::make_shared<Session>(std::move(socket));
    state->sessions.insert(session);
    boost::asio::co_spawn(state->acceptor.get_executor(), serve(state->mac, session),
                          [state, session](const std::exception_ptr& escaped) {
                            state->sessions.erase(session);
                            if (escaped) std::terminate();
                          });
  }
}

void MachineServer::stop() {
  if (!state_->acceptor.is_open()) return;
  error_code ignored;
  state_->acceptor.close(ignored);
  for (const auto& session : state_->sessions)
    session->socket.close(ignored);
  struct stat found{};
  const bool isOurs = ::lstat(state_->path.c_str(), &found) == 0 && found.st_ino == state_->file.st_ino &&
                      found.st_dev == state_->file.st_dev;
  if (isOurs) ::unlink(state_->path.c_str());
}

} // namespace ventolith::simulated
