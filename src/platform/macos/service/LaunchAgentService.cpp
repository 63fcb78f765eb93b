#include "platform/macos/service/LaunchAgentService.h"

#include "platform/macos/service/ErrorLine.h"
#include "platform/macos/service/LaunchAgentPropertyList.h"
#include "runtime/Files.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <climits>
#include <filesystem>
#include <map>
#include <optional>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

extern "C" char** environ; // No header here declares it.

namespace ventolith::platform {

namespace fs = std::filesystem;

using helper::DaemonStatus;
using ErrorText = helper::DaemonService::ErrorText;

namespace {

constexpr int mostAttempts = 10;
constexpr std::chrono::milliseconds pauseBetweenAttempts{500};

std::string domain() {
  return fmt::format("gui/{}", ::getuid());
}

/// Nobody else may write there.
fs::path userTemporaryFolder() {
  std::array<char, PATH_MAX> path{};
  const std::size_t size = ::confstr(_CS_DARWIN_USER_TEMP_DIR, path.data(), path.size());
  return size > 1 && size <= path.size() ? fs::path(path.data()) : fs::path("/tmp");
}

/// A program's end: its exit status, or none if there was none.
std::optional<int> exitStatus(pid_t process) {
  int status = 0;
  while (::waitpid(process, &status, 0) < 0) {
    if (errno != EINTR) return std::nullopt;
  }
  return WIFEXITED(status) ? std::optional(WEXITSTATUS(status)) : std::nullopt;
}

enum class Complaints { heard, unheard };

/// What launchctl has to say comes on standard error; what it prints besides is of no interest.
std::optional<pid_t> startLaunchctl(std::vector<std::string> words, Complaints complaints) {
  words.insert(words.begin(), "/bin/launchctl");
  std::vector<char*> arguments;
  for (std::string& word : words)
    arguments.push_back(word.data());
  arguments.push_back(nullptr);
  posix_spawn_file_actions_t streams = nullptr;
  if (::posix_spawn_file_actions_init(&streams) != 0) return std::nullopt;
  ::posix_spawn_file_actions_addopen(&streams, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
  if (complaints == Complaints::unheard)
    ::posix_spawn_file_actions_adddup2(&streams, STDOUT_FILENO, STDERR_FILENO);
  pid_t process = 0;
  const int error = ::posix_spawn(&process, arguments[0], &streams, nullptr, arguments.data(), environ);
  ::posix_spawn_file_actions_destroy(&streams);
  return error == 0 ? std::optional(process) : std::nullopt;
}

/// Waits for its end.
ErrorText launchctl(const std::vector<std::string>& words, Complaints complaints) {
  const auto process = startLaunchctl(words, complaints);
  if (!process) return "launchctl cannot be started";
  const auto status = exitStatus(*process);
  const bool isUnderWay =
      status == EINPROGRESS && words.front() == "bootout"; // The helper takes a moment to end.
  if (status == 0 || isUnderWay) return std::nullopt;
  return fmt::format("launchctl {} failed{}", words.front(),
                     status ? fmt::format(" with status {}", *status) : "");
}

std::map<std::string, std::string> environmentFor(const MachService& service) {
  std::map<std::string, std::string> environment;
  for (char* const* entry = environ; *entry != nullptr; ++entry) {
    const std::string_view variable = *entry;
    const std::size_t name = variable.find('=');
    if (!variable.starts_with("VENTOLITH_") || name == variable.npos) continue;
    environment.emplace(variable.substr(0, name), variable.substr(name + 1));
  }
  environment["VENTOLITH_BUS"] = service.name;
  return environment;
}

std::string targetOf(const MachService& service) {
  return domain() + "/" + service.name;
}

/// None when all is well.
ErrorText writePropertyList(const MachService& service, const std::string& program, const fs::path& file) {
  const std::string output = fs::path(file).replace_extension(".log").string();
  const LaunchAgent agent{.name = service.name,
                          .arguments = {program, "--allow-same-user"},
                          .environment = environmentFor(service),
                          .output = output};
  runtime::SystemFiles files;
  if (const auto error = replaceFile(files, file, propertyListOf(agent), runtime::privateFile))
    return fmt::format("{}: {}", file.string(), error.message());
  sayOnStandardError("[LaunchAgentService] the helper writes to " + output);
  return std::nullopt;
}

fs::path absolute(const std::string& path) {
  std::error_code error;
  const fs::path found = fs::absolute(path, error);
  return error ? fs::path(path) : found;
}

} // namespace

LaunchAgentService::LaunchAgentService(runtime::Executor executor, runtime::Clock& clock, MachService service,
                                       const std::string& program)
    : clock_(clock),
      service_(std::move(service)),
      program_(absolute(program).string()),
      queue_(std::move(executor)) {}

LaunchAgentService::~LaunchAgentService() {
  if (isRegistered_) startLaunchctl({"bootout", targetOf(service_)}, Complaints::heard);
}

runtime::Async<DaemonStatus> LaunchAgentService::status() {
  std::error_code ignored;
  const bool isThere = fs::is_regular_file(program_, ignored);
  co_return isRegistered_ ? DaemonStatus::enabled
  : isThere               ? DaemonStatus::notRegistered
                          : DaemonStatus::notFound;
}

runtime::Async<ErrorText> LaunchAgentService::registerDaemon() {
  if (isRegistered_) co_return std::nullopt;
  const fs::path file = userTemporaryFolder() / (service_.name + ".plist");
  if (auto error = writePropertyList(service_, program_, file)) co_return error;
  const std::vector<std::string> removal{"bootout", targetOf(service_)};
  co_await queue_.run([removal] { return launchctl(removal, Complaints::unheard); });

  // An agent that was there before may take a moment to go.
  ErrorText error;
  for (int attempt = 1; attempt <= mostAttempts; ++attempt) {
    const auto complaints = attempt == mostAttempts ? Complaints::heard : Complaints::unheard;
    error = co_await queue_.run([words = std::vector<std::string>{"bootstrap", domain(), file.string()},
                                 complaints] { return launchctl(words, complaints); });
    isRegistered_ = !error;
    if (isRegistered_) break;
    if (attempt < mostAttempts) co_await clock_.sleep(pauseBetweenAttempts, runtime::StopToken());
  }
  co_return error;
}

runtime::Async<ErrorText> LaunchAgentService::unregisterDaemon() {
  if (!isRegistered_) co_return std::nullopt;
  auto error = co_await queue_.run([words = std::vector<std::string>{"bootout", targetOf(service_)}] {
    return launchctl(words, Complaints::heard);
  });
  isRegistered_ = error.has_value();
  co_return error;
}

void LaunchAgentService::openSystemSettings() {
  sayOnStandardError("[LaunchAgentService] the helper is this user's own agent: there is nothing to allow");
}

} // namespace ventolith::platform
