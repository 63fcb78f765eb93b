#include "programs/ventolithctl/DaemonWords.h"

#include <array>
#include <cctype>

namespace ventolith::ctl {

using helper::DaemonStatus;

namespace {

struct Words {
  std::string_view caseName;
  std::string_view reason;
  std::string_view advice;
};

constexpr std::array words = {
    Words{"notRegistered", "the helper is not installed",
          "\"ventolithctl helper install\" installs and starts it."},
    Words{"enabled", "the helper is installed", ""},
    Words{"requiresApproval", "the helper is not allowed to run",
          "An administrator has to allow it: \"ventolithctl helper install\" asks for that."},
    Words{"notFound", "this system knows no helper",
          "Ventolith's package has to be installed first, and the system's service manager to run."},
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
  return wordsOf(status).advice;
}

} // namespace ventolith::ctl
