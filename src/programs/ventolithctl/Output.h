// Where a command writes, and what can be drawn there.
#pragma once

#include <cstdio>
#include <functional>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

namespace ventolith::ctl {

enum class ColorDepth { none, sixteen, trueColor };

struct TextSize {
  int columns = 80;
  int rows = 24;
};

/// The environment: a variable by its name, none if it is not set.
using Environment = std::function<std::optional<std::string>(const std::string& name)>;

/// The text could not be written: a full disk, a folder that is not there.
class OutputError : public std::runtime_error {
public:
  using std::runtime_error::runtime_error;
};

class Output {
public:
  Output() = default;
  Output(const Output&) = delete;
  Output& operator=(const Output&) = delete;
  virtual ~Output() = default;

  /// Fails with OutputError, here or at the next `flush`.
  virtual void write(std::string_view text) = 0;
  virtual void flush() = 0;
  /// Whether a line would be taken at once. A pipe whose reader is slow and a terminal that was paused take
  /// none, and writing to them waits.
  [[nodiscard]] virtual bool isReady() const { return true; }

  /// Whether what was written can be drawn over.
  [[nodiscard]] virtual bool isTerminal() const = 0;
  /// Of the terminal as it is now; 80 by 24 where there is none.
  [[nodiscard]] virtual TextSize size() const = 0;
  [[nodiscard]] virtual ColorDepth colors() const = 0;
};

/// No colour where `isTerminal` is false, or NO_COLOR is set to anything; else what COLORTERM promises.
[[nodiscard]] ColorDepth colorDepth(const Environment& environment, bool isTerminal);

/// A standard stream, which stays open.
class StreamOutput final : public Output {
public:
  StreamOutput(std::FILE* stream, std::string name, const Environment& environment);

  void write(std::string_view text) override;
  void flush() override;
  [[nodiscard]] bool isReady() const override;
  [[nodiscard]] bool isTerminal() const override { return isTerminal_; }
  [[nodiscard]] TextSize size() const override;
  [[nodiscard]] ColorDepth colors() const override { return colors_; }

private:
  std::FILE* stream_;
  std::string name_;
  bool isTerminal_;
  ColorDepth colors_;
};

} // namespace ventolith::ctl
