#include "platform/macos/service/HelperPresence.h"

#include <libproc.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <string_view>
#include <vector>

namespace ventolith::platform {

namespace {

constexpr std::string_view program = "ventolith-helper";

std::vector<pid_t> allProcesses() {
  constexpr int room = 64; // For those that start in between.
  std::vector<pid_t> processes(static_cast<std::size_t>(std::max(0, ::proc_listallpids(nullptr, 0)) + room));
  const int bytes = static_cast<int>(processes.size() * sizeof(pid_t));
  const int count = ::proc_listallpids(processes.data(), bytes);
  processes.resize(static_cast<std::size_t>(std::max(0, count)));
  return processes;
}

/// By the file that it runs: the name that a process has of its own is cut, and anybody's choice.
bool runsHelper(pid_t process) {
  std::array<char, PROC_PIDPATHINFO_MAXSIZE> path{};
  const int length = ::proc_pidpath(process, path.data(), static_cast<std::uint32_t>(path.size()));
  if (length <= 0) return false;
  const std::string_view file(path.data(), static_cast<std::size_t>(length));
  return file.substr(file.rfind('/') + 1) == program;
}

bool runsAs(pid_t process, uid_t user) {
  proc_bsdshortinfo information{};
  constexpr int size = sizeof information;
  return ::proc_pidinfo(process, PROC_PIDT_SHORTBSDINFO, 0, &information, size) == size &&
         information.pbsi_uid == user;
}

} // namespace

bool isHelperPresent(MachService::Domain domain) {
  const uid_t user = domain == MachService::Domain::system ? 0 : ::geteuid();
  const auto processes = allProcesses();
  return std::any_of(processes.begin(), processes.end(), [user](pid_t process) {
    return process != ::getpid() && runsAs(process, user) && runsHelper(process);
  });
}

} // namespace ventolith::platform
