#include "e2e/CommandPipe.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <stdexcept>

namespace ventolith::e2e {

CommandPipe::CommandPipe(const std::filesystem::path& file) : file_(file) {
  if (::mkfifo(file.c_str(), 0600) != 0) throw std::runtime_error("no pipe at " + file.string());
  descriptor_ = ::open(file.c_str(), O_RDWR | O_CLOEXEC);
}

CommandPipe::~CommandPipe() {
  ::close(descriptor_);
}

void CommandPipe::write(const std::string& line) const {
  const std::string text = line + '\n';
  if (::write(descriptor_, text.data(), text.size()) != static_cast<ssize_t>(text.size()))
    throw std::runtime_error("the pipe takes no line");
}

} // namespace ventolith::e2e
