#include "platform/simulated/SocketMachine.h"

#include "platform/simulated/MachineProtocol.h"
#include "platform/simulated/SimulatedMachine.h"

#include <boost/asio/io_context.hpp>
#include <boost/asio/local/stream_protocol.hpp>
#include <boost/asio/write.hpp>
#include <fmt/format.h>

#include <poll.h>

#include <array>
#include <cerrno>
#include <memory>
#include <span>
#include <stdexcept>
#include <utility>

namespace ventolith::simulated {

namespace {

using Socket = boost::asio::local::stream_protocol::socket;

constexpr int answerMilliseconds = 5000;

/// The client's end: one request and its reply at a time, waiting for the reply. After any failure it is
/// no longer connected.
class SocketLink {
public:
  explicit SocketLink(std::string path) : path_(std::move(path)), socket_(context_) { connect(); }

  [[nodiscard]] bool isConnected() const { return socket_.is_open(); }

  /// Connects, if it is not connected, and says whether it is then.
  bool connect() {
    if (isConnected()) return true;
    boost::system::error_code error;
    try {
      socket_.connect(boost::asio::local::stream_protocol::endpoint(path_), error);
    } catch (const boost::system::system_error&) {
      return false; // A path that is too long for a socket.
    }
    if (error) hangUp();
    return isConnected();
  }

  /// The reply to `request`; none if there is no simulator that gives one.
  std::optional<FrameBytes> ask(const FrameBytes& request) {
    if (!isConnected()) return std::nullopt;
    auto reply = exchange(request);
    if (!reply) hangUp();
    return reply;
  }

  void hangUp() {
    boost::system::error_code ignored;
    socket_.close(ignored);
  }

private:
  std::optional<FrameBytes> exchange(const FrameBytes& request) {
    if (request.size() > longestFrame) return std::nullopt;
    auto header = frameHeader(request.size());
    boost::system::error_code error;
    const std::array<boost::asio::const_buffer, 2> frame{boost::asio::buffer(header),
                                                         boost::asio::buffer(request)};
    boost::asio::write(socket_, frame, error);
    if (error || !readAll(header)) return std::nullopt;
    const auto length = announcedLength(header);
    if (!length) return std::nullopt;
    FrameBytes reply(*length);
    if (!readAll(reply)) return std::nullopt;
    return reply;
  }

  bool readAll(std::span<std::uint8_t> bytes) {
    while (!bytes.empty()) {
      if (!waitForAnswer()) return false;
      boost::system::error_code error;
      const std::size_t count = socket_.read_some(boost::asio::buffer(bytes.data(), bytes.size()), error);
      if (error) return false;
      bytes = bytes.subspan(count);
    }
    return true;
  }

  bool waitForAnswer() {
    pollfd wait{.fd = socket_.native_handle(), .events = POLLIN, .revents = 0};
    int ready = 0;
    do {
      ready = ::poll(&wait, 1, answerMilliseconds);
    } while (ready < 0 && errno == EINTR);
    return ready > 0;
  }

  std::string path_;
  boost::asio::io_context context_; // Never run: every operation is a blocking one.
  Socket socket_;
};

class SocketUserClient final : public hardware::SMCUserClient {
public:
  explicit SocketUserClient(std::shared_ptr<SocketLink> link) : link_(std::move(link)) {}

  hardware::SMCResult<hardware::IOConnect> open() override {
    if (!link_->connect()) return hardware::SMCError::driverNotFound();
    const auto reply = link_->ask(FrameWriter(Request::open).bytes());
    if (!reply) return hardware::SMCError::driverNotFound();
    FrameReader reader(*reply);
    const auto status = static_cast<hardware::KernReturn>(reader.takeUInt32());
    const hardware::IOConnect connection = reader.takeUInt32();
    if (!reader.isComplete()) return hardware::SMCError::openFailed(ioReturnError);
    if (status != hardware::kernSuccess) return hardware::SMCError::openFailed(status);
    return connection;
  }

  void close(hardware::IOConnect connection) override {
    FrameWriter request(Request::close);
    request.addUInt32(connection);
    // A simulator that is gone has closed it already.
    static_cast<void>(link_->ask(request.bytes()));
  }

  hardware::KernReturn call(hardware::IOConnect connection, const hardware::SMCParamStruct& input,
                            hardware::SMCParamStruct& output) override {
    FrameWriter request(Request::call);
    request.addUInt32(connection);
    request.addBlock(input);
    const auto reply = link_->ask(request.bytes());
    if (!reply) return ioReturnNotOpen;
    FrameReader reader(*reply);
    const auto status = static_cast<hardware::KernReturn>(reader.takeUInt32());
    const hardware::SMCParamStruct block = reader.takeBlock();
    if (!reader.isComplete()) return ioReturnError;
    output = block;
    return status;
  }

private:
  std::shared_ptr<SocketLink> link_;
};

class SocketHIDBridge final : public hardware::HIDBridge {
public:
  explicit SocketHIDBridge(std::shared_ptr<SocketLink> link) : link_(std::move(link)) {}

  [[nodiscard]] bool isAvailable() const override {
    const auto reply = link_->ask(FrameWriter(Request::hasHub).bytes());
    return reply && *reply == FrameBytes{1};
  }

  std::optional<Discovery> discoverLabeledTemperatureServices() override {
    if (!isAvailable()) return std::nullopt;
    const auto reply = link_->ask(FrameWriter(Request::hubLabels).bytes());
    if (!reply) return std::nullopt;
    Discovery discovery{.client = link_, .services = {}};
    FrameReader reader(*reply);
    while (reader.left() > 0) {
      const std::uint16_t length = reader.takeUInt16();
      std::string label(reader.takeText(length));
      if (reader.isBad()) return std::nullopt;
      const auto index = static_cast<std::uint32_t>(discovery.services.size());
      discovery.services.push_back({std::move(label), std::make_shared<std::uint32_t>(index)});
    }
    return discovery;
  }

  std::optional<double> sampleTemperature(const Service& service) override {
    if (!service.service) return std::nullopt;
    FrameWriter request(Request::sampleHub);
    request.addUInt32(*std::static_pointer_cast<std::uint32_t>(service.service));
    const auto reply = link_->ask(request.bytes());
    if (!reply) return std::nullopt;
    FrameReader reader(*reply);
    if (reader.takeByte() != 1) return std::nullopt;
    const double celsius = reader.takeDouble();
    if (!reader.isComplete()) return std::nullopt;
    return celsius;
  }

private:
  std::shared_ptr<SocketLink> link_;
};

} // namespace

hardware::Machine socketMachine(const std::string& path) {
  const auto link = std::make_shared<SocketLink>(path);
  return {
      .name = "simulator at " + path,
      .smc = std::make_unique<SocketUserClient>(link),
      .hid = std::make_unique<SocketHIDBridge>(link),
      .privileges = simulatedPrivileges(),
  };
}

std::optional<std::string> sendScriptLine(const std::string& path, std::string_view line) {
  SocketLink link(path);
  FrameWriter request(Request::script);
  request.addText(line);
  const auto reply = link.ask(request.bytes());
  if (!reply) throw std::runtime_error(fmt::format("no simulator answers at {}", path));
  if (reply->empty()) return std::nullopt;
  return std::string(reply->begin(), reply->end());
}

} // namespace ventolith::simulated
