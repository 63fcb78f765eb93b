#include "programs/ventolithctl/StripChart.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <string_view>

namespace ventolith::ctl {

namespace {

constexpr int eighthsOfALine = 8;
constexpr std::array<std::string_view, 9> levels = {" ", "▁", "▂", "▃", "▄", "▅", "▆", "▇", "█"};

/// How many eighths the column of `value` has, of `most`; the base line is one.
int heightOf(double value, double low, double high, int most) {
  const double fraction = high > low ? (value - low) / (high - low) : 0;
  const double clamped = fraction > 0 ? std::min(fraction, 1.0) : 0;
  return std::max(1, static_cast<int>(std::lround(clamped * most)));
}

} // namespace

void Course::add(std::optional<double> value) {
  const bool beginsCell = size_ % valuesOfACell_ == 0;
  if (beginsCell && cells_.size() == mostCells_) {
    mergeNeighbours();
    add(value);
    return;
  }
  if (beginsCell)
    cells_.push_back(value);
  else
    cells_.back() = std::max(cells_.back(), value);
  ++size_;
}

void Course::mergeNeighbours() {
  for (std::size_t place = 0; place < mostCells_ / 2; ++place) {
    cells_[place] = std::max(cells_[2 * place], cells_[2 * place + 1]);
  }
  cells_.resize(mostCells_ / 2);
  valuesOfACell_ *= 2;
}

std::vector<std::optional<double>> Course::cells(std::size_t count) const {
  const std::size_t shown = std::min(count, cells_.size());
  std::vector<std::optional<double>> result(shown);
  for (std::size_t cell = 0; cell < shown; ++cell) {
    const std::size_t begin = cell * cells_.size() / shown;
    const std::size_t end = (cell + 1) * cells_.size() / shown;
    for (std::size_t place = begin; place < end; ++place)
      result[cell] = std::max(result[cell], cells_[place]);
  }
  return result;
}

std::vector<std::vector<std::string>> drawColumns(const std::vector<std::optional<double>>& cells, double low,
                                                  double high, int rows) {
  std::vector<std::vector<std::string>> lines(static_cast<std::size_t>(rows));
  for (int row = 0; row < rows; ++row) {
    const int below = (rows - 1 - row) * eighthsOfALine;
    auto& line = lines[static_cast<std::size_t>(row)];
    line.reserve(cells.size());
    for (const auto& value : cells) {
      const int height = value ? heightOf(*value, low, high, rows * eighthsOfALine) : 0;
      line.emplace_back(levels[static_cast<std::size_t>(std::clamp(height - below, 0, eighthsOfALine))]);
    }
  }
  return lines;
}

} // namespace ventolith::ctl
