#include "platform/simulated/MachineProtocol.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <stdexcept>

namespace ventolith::simulated {

namespace {

using hardware::SMCParamStruct;

FrameBytes replyToOpen(SimulatedMac& mac, std::set<hardware::IOConnect>& connections) {
  const auto opened = mac.open();
  if (opened) connections.insert(*opened);
  FrameWriter reply;
  reply.addUInt32(static_cast<std::uint32_t>(opened ? hardware::kernSuccess : ioReturnNoResources));
  reply.addUInt32(opened ? *opened : 0);
  return reply.bytes();
}

FrameBytes replyToCall(SimulatedMac& mac, hardware::IOConnect connection, const SMCParamStruct& input) {
  SMCParamStruct output;
  const hardware::KernReturn status = mac.call(connection, input, output);
  FrameWriter reply;
  reply.addUInt32(static_cast<std::uint32_t>(status));
  reply.addBlock(output);
  return reply.bytes();
}

FrameBytes replyToHubLabels(SimulatedMac& mac) {
  FrameWriter reply;
  for (const std::string& label : mac.hubLabels()) {
    reply.addUInt16(static_cast<std::uint16_t>(label.size()));
    reply.addText(label);
  }
  return reply.bytes();
}

FrameBytes replyToSampleHub(SimulatedMac& mac, std::uint32_t index) {
  const auto sample = mac.sampleHub(index);
  FrameWriter reply;
  reply.addByte(sample ? 1 : 0);
  if (sample) reply.addDouble(*sample);
  return reply.bytes();
}

FrameBytes replyToScript(SimulatedMac& mac, std::string_view line) {
  FrameWriter reply;
  try {
    mac.runLine(line);
  } catch (const std::runtime_error& error) {
    const std::string_view text = error.what();
    reply.addText(text.substr(0, longestFrame));
  }
  return reply.bytes();
}

std::optional<FrameBytes> replyIfComplete(const FrameReader& reader, FrameBytes reply) {
  if (!reader.isComplete()) return std::nullopt;
  return reply;
}

} // namespace

void FrameWriter::addUInt16(std::uint16_t number) {
  for (unsigned shift = 0; shift < 16; shift += 8)
    addByte(static_cast<std::uint8_t>(number >> shift));
}

void FrameWriter::addUInt32(std::uint32_t number) {
  for (unsigned shift = 0; shift < 32; shift += 8)
    addByte(static_cast<std::uint8_t>(number >> shift));
}

void FrameWriter::addDouble(double number) {
  const auto bits = std::bit_cast<std::uint64_t>(number);
  addUInt32(static_cast<std::uint32_t>(bits));
  addUInt32(static_cast<std::uint32_t>(bits >> 32));
}

void FrameWriter::addText(std::string_view text) {
  bytes_.insert(bytes_.end(), text.begin(), text.end());
}

void FrameWriter::addBlock(const SMCParamStruct& block) {
  const auto* const start = reinterpret_cast<const std::uint8_t*>(&block);
  bytes_.insert(bytes_.end(), start, start + sizeof block);
}

bool FrameReader::take(std::size_t count, const std::uint8_t*& from) {
  if (count > left()) isBad_ = true;
  if (isBad_) return false;
  from = bytes_.data() + place_;
  place_ += count;
  return true;
}

std::uint8_t FrameReader::takeByte() {
  const std::uint8_t* from = nullptr;
  return take(1, from) ? *from : std::uint8_t{0};
}

std::uint16_t FrameReader::takeUInt16() {
  const std::uint16_t low = takeByte();
  const std::uint16_t high = takeByte();
  return static_cast<std::uint16_t>(low | high << 8);
}

std::uint32_t FrameReader::takeUInt32() {
  const std::uint32_t low = takeUInt16();
  const std::uint32_t high = takeUInt16();
  return low | high << 16;
}

double FrameReader::takeDouble() {
  const std::uint64_t low = takeUInt32();
  const std::uint64_t high = takeUInt32();
  return std::bit_cast<double>(low | high << 32);
}

std::string_view FrameReader::takeText(std::size_t length) {
  const std::uint8_t* from = nullptr;
  if (!take(length, from)) return {};
  return {reinterpret_cast<const char*>(from), length};
}

SMCParamStruct FrameReader::takeBlock() {
  SMCParamStruct block;
  const std::uint8_t* from = nullptr;
  if (take(sizeof block, from)) std::memcpy(&block, from, sizeof block);
  return block;
}

std::array<std::uint8_t, frameHeaderSize> frameHeader(std::size_t length) {
  std::array<std::uint8_t, frameHeaderSize> header{};
  for (std::size_t place = 0; place < header.size(); ++place) {
    header[place] = static_cast<std::uint8_t>(length >> (8 * place));
  }
  return header;
}

std::optional<std::size_t> announcedLength(const std::array<std::uint8_t, frameHeaderSize>& header) {
  std::size_t length = 0;
  for (std::size_t place = header.size(); place-- > 0;)
    length = length << 8 | header[place];
  if (length > longestFrame) return std::nullopt;
  return length;
}

std::optional<FrameBytes> answerRequest(SimulatedMac& mac, std::set<hardware::IOConnect>& connections,
                                        const FrameBytes& request) {
  FrameReader reader(request);
  switch (static_cast<Request>(reader.takeByte())) {
  case Request::open:
    if (!reader.isComplete()) return std::nullopt;
    return replyToOpen(mac, connections);
  case Request::close: {
    const hardware::IOConnect connection = reader.takeUInt32();
    if (!reader.isComplete()) return std::nullopt;
    if (connections.erase(connection) > 0) mac.close(connection);
    return FrameBytes{};
  }
  case Request::call: {
    const hardware::IOConnect connection = reader.takeUInt32();
    const SMCParamStruct input = reader.takeBlock();
    if (!reader.isComplete()) return std::nullopt;
    return replyToCall(mac, connections.contains(connection) ? connection : 0, input);
  }
  case Request::hasHub: return replyIfComplete(reader, {mac.hasHub() ? std::uint8_t{1} : std::uint8_t{0}});
  case Request::hubLabels:
    if (!reader.isComplete()) return std::nullopt;
    return replyToHubLabels(mac);
  case Request::sampleHub: {
    const std::uint32_t index = reader.takeUInt32();
    if (!reader.isComplete()) return std::nullopt;
    return replyToSampleHub(mac, index);
  }
  case Request::script: return replyToScript(mac, reader.takeText(reader.left()));
  }
  return std::nullopt;
}

} // namespace ventolith::simulated
