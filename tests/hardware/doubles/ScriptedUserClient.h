// A driver that records every block it is given and answers from a script.
#pragma once

#include "hardware/SMCUserClient.h"
#include "hardware/doubles/Blocks.h"

#include <deque>
#include <stdexcept>
#include <vector>

namespace ventolith::doubles {

struct Reply {
  hardware::KernReturn code = hardware::kernSuccess;
  hardware::SMCParamStruct output = {};
};

/// The answer to a query for a key's information.
[[nodiscard]] inline Reply info(std::uint32_t size, std::string_view type) {
  Reply reply;
  reply.output.keyInfo.dataSize = size;
  reply.output.keyInfo.dataType = hardware::packKey(type);
  return reply;
}

/// The answer to a read.
[[nodiscard]] inline Reply value(const std::vector<std::uint8_t>& bytes) {
  Reply reply;
  std::copy(bytes.begin(), bytes.end(), reply.output.bytes.begin());
  return reply;
}

/// The answer to a query for the key at an index.
[[nodiscard]] inline Reply keyNamed(std::uint32_t packed) {
  Reply reply;
  reply.output.key = packed;
  return reply;
}

/// A call that reaches the SMC and comes back with its result byte.
[[nodiscard]] inline Reply result(std::uint8_t byte) {
  Reply reply;
  reply.output.result = byte;
  return reply;
}

/// A call that the driver itself fails.
[[nodiscard]] inline Reply driverFailure(std::uint32_t code) {
  return {static_cast<hardware::KernReturn>(code), {}};
}

struct ScriptedUserClient final : hardware::SMCUserClient {
  std::deque<hardware::SMCResult<hardware::IOConnect>> openings = {7U};
  std::deque<Reply> replies;

  std::vector<Block> inputs;
  std::vector<Block> outputsAsGiven; // What stood in the output block before the driver filled it.
  std::vector<hardware::IOConnect> connections;
  std::vector<hardware::IOConnect> closed;

  hardware::SMCResult<hardware::IOConnect> open() override {
    const auto opened = openings.front();
    openings.pop_front();
    return opened;
  }

  void close(hardware::IOConnect connection) override { closed.push_back(connection); }

  hardware::KernReturn call(hardware::IOConnect connection, const hardware::SMCParamStruct& input,
                            hardware::SMCParamStruct& output) override {
    connections.push_back(connection);
    inputs.push_back(bytesOf(input));
    outputsAsGiven.push_back(bytesOf(output));
    if (replies.empty()) throw std::logic_error("a call that the script does not expect");
    const Reply reply = replies.front();
    replies.pop_front();
    output = reply.output;
    return reply.code;
  }
};

} // namespace ventolith::doubles
