// What a simulated machine and its clients in other processes say to each other.
//
// Client and server talk in turns over one Unix socket: one request, one reply. Each is a frame: the
// length of what follows as four bytes, little-endian, and then that many. A request begins with one byte
// that says what is asked; numbers are little-endian. Both ends are on one machine, so the driver's
// 80-byte block goes as it stands in memory.
#pragma once

#include "platform/simulated/SimulatedMac.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <set>
#include <string_view>
#include <vector>

namespace ventolith::simulated {

using FrameBytes = std::vector<std::uint8_t>;

inline constexpr std::size_t frameHeaderSize = 4;
/// A longer frame is none: whoever announces one is hung up on.
inline constexpr std::size_t longestFrame = 128 * 1024;

enum class Request : std::uint8_t {
  open = 1,      ///< Reply: result (4 bytes), connection (4).
  close = 2,     ///< Connection (4). Reply: nothing.
  call = 3,      ///< Connection (4), block (80). Reply: result (4), block (80).
  hasHub = 4,    ///< Reply: 0 or 1.
  hubLabels = 5, ///< Reply: for each label its length (2) and its text.
  sampleHub = 6, ///< Index (4). Reply: 0, or 1 and a double (8).
  script = 7,    ///< A line of a script. Reply: what is wrong with it; nothing if it was done.
};

/// Puts the parts of a frame together.
class FrameWriter {
public:
  FrameWriter() = default;
  explicit FrameWriter(Request request) { addByte(static_cast<std::uint8_t>(request)); }

  void addByte(std::uint8_t byte) { bytes_.push_back(byte); }
  void addUInt16(std::uint16_t number);
  void addUInt32(std::uint32_t number);
  void addDouble(double number);
  void addText(std::string_view text);
  void addBlock(const hardware::SMCParamStruct& block);

  [[nodiscard]] const FrameBytes& bytes() const { return bytes_; }

private:
  FrameBytes bytes_;
};

/// Takes a frame apart. What is not there reads as zero and makes the frame a bad one.
class FrameReader {
public:
  explicit FrameReader(const FrameBytes& bytes) : bytes_(bytes) {}

  [[nodiscard]] std::uint8_t takeByte();
  [[nodiscard]] std::uint16_t takeUInt16();
  [[nodiscard]] std::uint32_t takeUInt32();
  [[nodiscard]] double takeDouble();
  [[nodiscard]] std::string_view takeText(std::size_t length);
  [[nodiscard]] hardware::SMCParamStruct takeBlock();

  [[nodiscard]] std::size_t left() const { return bytes_.size() - place_; }
  [[nodiscard]] bool isBad() const { return isBad_; }
  /// All was there and nothing is left.
  [[nodiscard]] bool isComplete() const { return !isBad_ && left() == 0; }

private:
  [[nodiscard]] bool take(std::size_t count, const std::uint8_t*& from);

  const FrameBytes& bytes_;
  std::size_t place_ = 0;
  bool isBad_ = false;
};

/// The header of a frame of `length` bytes.
[[nodiscard]] std::array<std::uint8_t, frameHeaderSize> frameHeader(std::size_t length);
/// The length that a header announces; none if no frame is that long or that short.
[[nodiscard]] std::optional<std::size_t>
announcedLength(const std::array<std::uint8_t, frameHeaderSize>& header);

/// Does what `request` asks and returns the reply; none if it is no request, which ends the session.
/// `connections` are the ones that this session has opened: to it no others are open.
[[nodiscard]] std::optional<FrameBytes>
answerRequest(SimulatedMac& mac, std::set<hardware::IOConnect>& connections, const FrameBytes& request);

} // namespace ventolith::simulated
