#include "programs/ventolithctl/Output.h"

#include <poll.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

namespace ventolith::ctl {

ColorDepth colorDepth(const Environment& environment, bool isTerminal) {
  if (!isTerminal || !environment("NO_COLOR").value_or("").empty()) return ColorDepth::none;
  const std::string promised = environment("COLORTERM").value_or("");
  return promised == "truecolor" || promised == "24bit" ? ColorDepth::trueColor : ColorDepth::sixteen;
}

StreamOutput::StreamOutput(std::FILE* stream, std::string name, const Environment& environment)
    : stream_(stream),
      name_(std::move(name)),
      isTerminal_(isatty(fileno(stream)) != 0 && environment("TERM").value_or("dumb") != "dumb"),
      colors_(colorDepth(environment, isTerminal_)) {}

void StreamOutput::write(std::string_view text) {
  if (std::fwrite(text.data(), 1, text.size(), stream_) == text.size()) return;
  throw OutputError(name_ + ": " + std::generic_category().message(errno));
}

void StreamOutput::flush() {
  if (std::fflush(stream_) != 0) throw OutputError(name_ + ": " + std::generic_category().message(errno));
}

bool StreamOutput::isReady() const {
  pollfd stream{.fd = fileno(stream_), .events = POLLOUT, .revents = 0};
  return poll(&stream, 1, 0) != 0; // Of what is broken the next write tells.
}

TextSize StreamOutput::size() const {
  winsize window{};
  if (!isTerminal_ || ioctl(fileno(stream_), TIOCGWINSZ, &window) != 0) return {};
  if (window.ws_col == 0 || window.ws_row == 0) return {};
  return {.columns = window.ws_col, .rows = window.ws_row};
}

} // namespace ventolith::ctl
