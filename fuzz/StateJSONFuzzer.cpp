// A state of any text: refused with an error, or a record that comes back the same.
#include "core/ControlContract.h"

#include <cstdlib>

using namespace ventolith;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  try {
    const auto state = core::decodeControlState({reinterpret_cast<const char*>(data), size});
    if (core::decodeControlState(core::encode(state)) != state) std::abort();
  } catch (const core::DecodeError&) {
    return 0;
  }
  return 0;
}
