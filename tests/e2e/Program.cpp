#include "e2e/Program.h"

#include "e2e/Patience.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <system_error>
#include <thread>

namespace ventolith::e2e {

namespace {

namespace fs = std::filesystem;

constexpr std::chrono::milliseconds pollInterval{20};
// Ends what a test left behind that was itself ended before it could clean up.
constexpr unsigned longestLifeSeconds = 300;

void require(int error, const std::string& what) {
  if (error != 0) throw std::runtime_error(what + ": " + std::generic_category().message(error));
}

/// What the child has of this process's own environment: the paths, and how sanitizers report.
Environment inherited() {
  Environment environment;
  for (const char* const name :
       {"PATH", "TMPDIR", "ASAN_OPTIONS", "TSAN_OPTIONS", "UBSAN_OPTIONS", "LSAN_OPTIONS"}) {
    if (const char* const value = std::getenv(name)) environment[name] = value;
  }
  return environment;
}

/// Strings as a new process takes them: by pointers that end with a null.
class Pointers {
public:
  explicit Pointers(std::vector<std::string> strings) : strings_(std::move(strings)) {
    for (std::string& string : strings_)
      pointers_.push_back(string.data());
    pointers_.push_back(nullptr);
  }
  Pointers(const Pointers&) = delete;
  Pointers& operator=(const Pointers&) = delete;

  [[nodiscard]] char* const* get() const { return pointers_.data(); }

private:
  std::vector<std::string> strings_;
  std::vector<char*> pointers_;
};

/// An open file, of which a program that is executed knows nothing.
class Descriptor {
public:
  explicit Descriptor(int number) : number_(number) {
    if (number_ < 0) require(errno, "a stream of a program");
    ::fcntl(number_, F_SETFD, FD_CLOEXEC);
  }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  ~Descriptor() { ::close(number_); }

  [[nodiscard]] int get() const { return number_; }

private:
  int number_;
};

/// The end for writing of a pipe that nobody reads.
int brokenPipe() {
  std::array<int, 2> ends{};
  if (::pipe(ends.data()) != 0) require(errno, "pipe");
  ::close(ends[0]);
  return ends[1];
}

int openForWriting(const fs::path& file, bool isBroken) {
  return isBroken ? brokenPipe() : ::open(file.c_str(), O_WRONLY | O_CREAT | O_APPEND, 0600);
}

/// What the child is to become, made before there is one: it may allocate nothing.
struct Launch {
  Pointers arguments;
  Pointers environment;
  int in = -1;
  int out = -1;
  int err = -1;
};

/// Runs in the child. Every signal is as in a fresh session, whatever this process was started with.
[[noreturn]] void become(const Launch& launch) {
  for (const int number : {SIGINT, SIGTERM, SIGHUP, SIGPIPE, SIGALRM})
    ::signal(number, SIG_DFL);
  sigset_t none{};
  sigemptyset(&none);
  ::sigprocmask(SIG_SETMASK, &none, nullptr);
  ::alarm(longestLifeSeconds);
  ::dup2(launch.in, STDIN_FILENO);
  ::dup2(launch.out, STDOUT_FILENO);
  ::dup2(launch.err, STDERR_FILENO);
  ::execve(launch.arguments.get()[0], launch.arguments.get(), launch.environment.get());
  ::_exit(127);
}

} // namespace

void waitUntil(const std::string& what, const std::function<bool()>& holds) {
  const auto end = std::chrono::steady_clock::now() + patience;
  while (!holds()) {
    if (std::chrono::steady_clock::now() > end) throw std::runtime_error("waited in vain: " + what);
    std::this_thread::sleep_for(pollInterval);
  }
}

std::string readText(const fs::path& file) {
  std::ifstream stream(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

std::vector<std::string> readLines(const fs::path& file) {
  const std::string text = readText(file);
  std::vector<std::string> lines;
  std::size_t start = 0;
  for (std::size_t end = text.find('\n'); end != std::string::npos; end = text.find('\n', start)) {
    lines.push_back(text.substr(start, end - start));
    start = end + 1;
  }
  return lines;
}

TemporaryFolder::TemporaryFolder() {
  // Short, since the path of a socket in it is limited.
  std::string name = (fs::temp_directory_path() / "ventolith-e2e-XXXXXX").string();
  if (::mkdtemp(name.data()) == nullptr) require(errno, name);
  path_ = name;
}

TemporaryFolder::~TemporaryFolder() {
  std::error_code ignored;
  fs::remove_all(path_, ignored);
}

fs::path TemporaryFolder::write(const std::string& name, const std::string& text) const {
  std::ofstream stream(path_ / name, std::ios::binary);
  stream << text << std::flush;
  if (!stream) throw std::runtime_error((path_ / name).string() + ": cannot be written");
  return path_ / name;
}

Program::Program(const std::string& name, std::vector<std::string> arguments, const Environment& environment,
                 const Streams& streams)
    : name_(name) {
  start(std::move(arguments), environment, streams);
  isRunning_ = true;
}

void Program::start(std::vector<std::string> arguments, const Environment& environment,
                    const Streams& streams) {
  const fs::path file = fs::path(VENTOLITH_PROGRAMS) / name_;
  arguments.insert(arguments.begin(), file.string());
  Environment whole = environment;
  whole.merge(inherited());
  std::vector<std::string> settings;
  for (const auto& [variable, value] : whole)
    settings.push_back(variable + "=" + value);

  const Descriptor in(::open(streams.in.c_str(), O_RDONLY));
  const Descriptor out(openForWriting(outFile(), streams.isOutBroken));
  const Descriptor err(openForWriting(streams.err.empty() ? errFile() : streams.err, streams.isErrBroken));
  const Launch launch{Pointers(std::move(arguments)), Pointers(std::move(settings)), in.get(), out.get(),
                      err.get()};
  process_ = ::fork();
  if (process_ < 0) require(errno, "fork");
  if (process_ == 0) become(launch);
}

Program::~Program() {
  if (!isRunning()) return;
  ::kill(process_, SIGKILL);
  ::waitpid(process_, nullptr, 0);
}

void Program::signal(int number) const {
  if (isRunning_) ::kill(process_, number);
}

bool Program::isRunning() {
  if (isRunning_) isRunning_ = ::waitpid(process_, &waitStatus_, WNOHANG) != process_;
  return isRunning_;
}

Ended Program::wait() {
  waitUntil("the end of " + name_, [this] { return !isRunning(); });
  const int status = WIFSIGNALED(waitStatus_) ? 128 + WTERMSIG(waitStatus_) : WEXITSTATUS(waitStatus_);
  return {status, out(), err()};
}

Ended run(const std::string& name, std::vector<std::string> arguments, const Environment& environment,
          const Streams& streams) {
  return Program(name, std::move(arguments), environment, streams).wait();
}

} // namespace ventolith::e2e
