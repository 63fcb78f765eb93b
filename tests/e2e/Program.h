// The project's programs as child processes, and what a test needs to watch them: waiting with a deadline,
// and folders that go away.
#pragma once

#include <sys/types.h>

#include <filesystem>
#include <functional>
#include <map>
#include <string>
#include <vector>

namespace ventolith::e2e {

/// Asks `holds` every 20 ms until it says yes. Fails with std::runtime_error, which names `what`, once its
/// patience is over.
void waitUntil(const std::string& what, const std::function<bool()>& holds);

/// The whole file; empty if there is none.
[[nodiscard]] std::string readText(const std::filesystem::path& file);

/// Its whole lines: what stands after the last end of line is still being written.
[[nodiscard]] std::vector<std::string> readLines(const std::filesystem::path& file);

/// Goes away with all that is in it.
class TemporaryFolder {
public:
  TemporaryFolder();
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;
  ~TemporaryFolder();

  [[nodiscard]] const std::filesystem::path& path() const { return path_; }

  /// Writes a file and returns its path.
  std::filesystem::path write(const std::string& name, const std::string& text) const;

private:
  std::filesystem::path path_;
};

using Environment = std::map<std::string, std::string>;

/// Where a program's standard streams lead, if not to files that are kept.
struct Streams {
  std::filesystem::path in = "/dev/null";
  bool isOutBroken = false; // A pipe that nobody reads any more.
  bool isErrBroken = false;
  std::filesystem::path err = {}; // In place of the file that is kept.
};

/// How a program ended, and what it wrote.
struct Ended {
  int status = 0; // The exit status; 128 and the signal's number after a signal.
  std::string out;
  std::string err;
};

/// A running program. It does not outlive this object.
class Program {
public:
  /// Starts `name`, found beside the other programs of this build, with PATH and `environment` alone.
  Program(const std::string& name, std::vector<std::string> arguments, const Environment& environment,
          const Streams& streams = {});
  Program(const Program&) = delete;
  Program& operator=(const Program&) = delete;
  ~Program();

  void signal(int number) const;

  [[nodiscard]] bool isRunning();

  /// What it has written so far.
  [[nodiscard]] std::string out() const { return readText(outFile()); }
  [[nodiscard]] std::vector<std::string> outLines() const { return readLines(outFile()); }
  [[nodiscard]] std::string err() const { return readText(errFile()); }

  /// Waits for its end, with the patience of waitUntil().
  Ended wait();

private:
  [[nodiscard]] std::filesystem::path outFile() const { return folder_.path() / "out"; }
  [[nodiscard]] std::filesystem::path errFile() const { return folder_.path() / "err"; }
  void start(std::vector<std::string> arguments, const Environment& environment, const Streams& streams);

  TemporaryFolder folder_;
  std::string name_;
  pid_t process_ = -1;
  bool isRunning_ = false;
  int waitStatus_ = 0;
};

/// Runs a program to its end.
[[nodiscard]] Ended run(const std::string& name, std::vector<std::string> arguments,
                        const Environment& environment = {}, const Streams& streams = {});

} // namespace ventolith::e2e
