#include "app/selftest/SelfTestOutput.h"

namespace ventolith::app {

void SelfTestOutput::check(const std::string& label, bool ok, bool& allOK) {
  print((ok ? "  [PASS] " : "  [FAIL] ") + label);
  if (!ok) allOK = false;
}

} // namespace ventolith::app
