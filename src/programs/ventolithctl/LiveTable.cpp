#include "programs/ventolithctl/LiveTable.h"

#include <fmt/format.h>

#include <algorithm>
#include <string_view>

namespace ventolith::ctl {

namespace {

constexpr std::string_view hideCursor = "\x1b[?25l";
constexpr std::string_view showCursor = "\x1b[?25h";
constexpr std::string_view beginTogether = "\x1b[?2026h"; // Terminals without it ignore it.
constexpr std::string_view endTogether = "\x1b[?2026l";
constexpr std::string_view clearToEndOfLine = "\x1b[K";
constexpr std::string_view clearBelow = "\x1b[J";

/// One row less than the terminal has: the cursor stands below the last line, which must not scroll.
std::vector<std::string> fittedTo(int rows, std::vector<std::string> lines) {
  const auto most = static_cast<std::size_t>(std::max(rows - 1, 1));
  if (lines.size() <= most) return lines;
  std::swap(lines[most - 1], lines.back());
  lines.resize(most);
  return lines;
}

} // namespace

LiveTable::~LiveTable() {
  if (drawnLines_ == 0) return;
  try {
    out_.write(showCursor);
    out_.flush();
  } catch (const OutputError&) {
    // The terminal is gone, and its cursor with it.
  }
}

void LiveTable::draw(const std::vector<std::string>& lines) {
  std::string text(beginTogether);
  if (drawnLines_ == 0)
    text += hideCursor;
  else
    text += fmt::format("\x1b[{}A\r", drawnLines_);
  const auto shown = fittedTo(out_.size().rows, lines);
  for (const std::string& line : shown)
    text.append(line).append(clearToEndOfLine).append("\n");
  text.append(clearBelow).append(endTogether);
  drawnLines_ = shown.size();
  out_.write(text);
}

} // namespace ventolith::ctl
