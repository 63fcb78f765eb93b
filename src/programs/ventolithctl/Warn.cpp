#include "programs/ventolithctl/Warn.h"

namespace ventolith::ctl {

void tryToWrite(Context& context, const std::string& text) {
  if (!context.err.isReady()) return;
  try {
    context.err.write(text);
    context.err.flush();
  } catch (const OutputError&) {
  }
}

void warn(Context& context, const std::string& text) {
  tryToWrite(context, "ventolithctl: " + text + "\n");
}

} // namespace ventolith::ctl
