// The course of values over a whole run, drawn in block characters.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace ventolith::ctl {

/// A course of any length in bounded memory: neighbouring values are merged into their highest as more
/// come in. A value may be missing.
class Course {
public:
  /// `mostCells` is even and at least 2.
  explicit Course(std::size_t mostCells = 1024) : mostCells_(mostCells) {}

  void add(std::optional<double> value);

  /// The course in `count` cells, or fewer if there are fewer values; the highest value of each.
  [[nodiscard]] std::vector<std::optional<double>> cells(std::size_t count) const;

  [[nodiscard]] std::size_t size() const { return size_; }

private:
  void mergeNeighbours();

  std::size_t mostCells_;
  std::size_t size_ = 0;          // Values that came in.
  std::size_t valuesOfACell_ = 1; // Only the last cell may have fewer.
  std::vector<std::optional<double>> cells_;
};

/// Draws `cells` as columns that rise from `low` to `high`, in `rows` lines from the top down, to an
/// eighth of a line. A missing value leaves its column empty; a value at or below `low` shows as a base
/// line.
[[nodiscard]] std::vector<std::vector<std::string>>
drawColumns(const std::vector<std::optional<double>>& cells, double low, double high, int rows);

} // namespace ventolith::ctl
