// Lines on a terminal that are drawn over in place.
#pragma once

#include "programs/ventolithctl/Output.h"

#include <string>
#include <vector>

namespace ventolith::ctl {

/// Hides the cursor from its first drawing to its end, and leaves the last drawing standing.
class LiveTable {
public:
  explicit LiveTable(Output& out) : out_(out) {}
  LiveTable(const LiveTable&) = delete;
  LiveTable& operator=(const LiveTable&) = delete;
  ~LiveTable();

  /// Draws `lines`, none of which is wider than the terminal, over those of the last drawing. What is
  /// beyond the terminal's height is left out, the last line kept. The terminal shows the new drawing
  /// at once, and nothing in between.
  void draw(const std::vector<std::string>& lines);

private:
  Output& out_;
  std::size_t drawnLines_ = 0;
};

} // namespace ventolith::ctl
