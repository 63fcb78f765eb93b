#include "programs/ventolithctl/DaemonWords.h"

#include "programs/ventolithctl/SystemAdvice.h"

#include <array>
#include <cctype>

namespace ventolith::ctl {

using helper::DaemonStatus;

namespace {

struct Words {
  std::string_view caseName;
  std::string_view reason;
};

constexpr std::array words = {
    Words{"notRegistered", "the helper is not installed"},
    Words{"enabled", "the helper is installed"},
    Words{"requiresApproval", "the helper is not allowed to run"},
    Words{"notFound", "this system knows no helper"},
};

const Words& wordsOf(DaemonStatus status) {
  return words.at(static_cast<std::size_t>(status));
}

} // namespace

std::string_view caseName(DaemonStatus status) {
  return wordsOf(status).caseName;
}

std::string_view registrationReason(DaemonStatus status) {
  return wordsOf(status).reason;
}

std::string registrationSentence(DaemonStatus status) {
  std::string sentence(registrationReason(status));
  sentence.front() = static_cast<char>(std::toupper(static_cast<unsigned char>(sentence.front())));
  return sentence + ".";
}

std::string_view registrationAdvice(DaemonStatus status) {
  switch (status) {
  case DaemonStatus::notRegistered: return "\"ventolithctl helper install\" installs and starts it.";
  case DaemonStatus::enabled: return "";
  case DaemonStatus::requiresApproval: return approvalAdvice();
  case DaemonStatus::notFound: break;
  }
  return installationAdvice();
}

} // namespace ventolith::ctl
