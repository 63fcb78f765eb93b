// Has the compiler write down what it makes of the protocol: XPC goes by that, at both ends of the line.
// Compiled to assembler text for a Mac, and never run.
#include "platform/macos/service/FanHelperProtocol.h"

Protocol* theProtocol() {
  return @protocol(FanHelperProtocol);
}
