#include "outline_table.h"

#include <algorithm>
#include <limits>

#include "between_rows.h"
#include "measured_rows.h"

namespace orvo {

namespace {

// The table's make-up: no row before the first measured one, behind the last, and at these lumas...
constexpr int kEmptyRows[] = {19, 171, 184, 185, 186};
// ...and where the outlines begin, break off and end they are segments or single colours.
constexpr int kSegmentRows[] = {15, 16, 17, 18, 20, 21, 22, 23, 180, 181, 182, 183, 187};
constexpr int kPointRows[] = {188, 189, 190, 191, 225, 226, 227, 228, 229, 230};
constexpr int kAllVertices = 1353;
constexpr std::size_t kMostVertices = 12;
// The one row with a vertex more, where the outlines are largest.
constexpr std::size_t kRichestRow = 92;
constexpr std::size_t kRichestVertices = 13;

template <std::size_t N>
bool Holds(const int (&rows)[N], int luma) {
  return std::find(std::begin(rows), std::end(rows), luma) != std::end(rows);
}

// A grid too coarse for a sliver gets a little more of it.
Polygon AtLeast(std::size_t vertices, Extents extents) {
  constexpr double kStep = 0.125;
  Polygon polygon = GridPolygon(extents);
  while (polygon.size() < vertices) {
    for (double& extent : extents) extent += kStep;
    polygon = GridPolygon(extents);
  }
  return polygon;
}

Polygon Widest(const Polygon& polygon) {
  const auto rightmost =
      std::max_element(polygon.begin(), polygon.end(),
                       [](const ChromaPoint& a, const ChromaPoint& b) { return a.cb < b.cb; });
  return {polygon.front(), *rightmost};
}

Polygon Middle(const Polygon& polygon) {
  int cb = 0;
  int cr = 0;
  for (const ChromaPoint& point : polygon) {
    cb += point.cb;
    cr += point.cr;
  }
  const int count = static_cast<int>(polygon.size());
  return {{(cb + count / 2) / count, (cr + count / 2) / count}};
}

void RemoveVertex(Polygon& polygon, std::size_t vertex) {
  polygon.erase(polygon.begin() + static_cast<std::ptrdiff_t>(vertex));
  polygon = HullOf(std::move(polygon));
}

Polygon DrawnRow(int luma) {
  const Extents extents = ShapeAt(luma);
  if (Holds(kSegmentRows, luma)) return Widest(AtLeast(2, extents));
  if (Holds(kPointRows, luma)) return Middle(AtLeast(1, extents));
  Polygon polygon = AtLeast(3, extents);
  const bool richest = luma == static_cast<int>(kRichestRow);
  while (polygon.size() > (richest ? kRichestVertices : kMostVertices)) {
    RemoveVertex(polygon, LeastVertex(polygon));
  }
  return polygon;
}

std::size_t VerticesOf(const OutlineTable& table) {
  std::size_t sum = 0;
  for (const Polygon& polygon : table) sum += polygon.size();
  return sum;
}

// Takes vertices away where least area goes with them.
void Thin(OutlineTable& table, const std::array<bool, kLumaCount>& drawn) {
  while (VerticesOf(table) > kAllVertices) {
    std::size_t thinned = 0;
    int leastLoss = std::numeric_limits<int>::max();
    for (std::size_t y = 0; y < table.size(); ++y) {
      if (!drawn[y] || y == kRichestRow || table[y].size() < 4) continue;
      const int loss = LossOf(table[y], LeastVertex(table[y]));
      if (loss < leastLoss) {
        leastLoss = loss;
        thinned = y;
      }
    }
    RemoveVertex(table[thinned], LeastVertex(table[thinned]));
  }
}

}  // namespace

OutlineTable MakeOutlines() {
  OutlineTable table;
  std::array<bool, kLumaCount> drawn{};
  const auto& measured = MeasuredRows();
  for (int y = measured.front().luma; y <= measured.back().luma; ++y) {
    const auto at = static_cast<std::size_t>(y);
    drawn[at] = !Holds(kEmptyRows, y);
    if (drawn[at]) table[at] = DrawnRow(y);
  }
  for (const MeasuredRow& row : measured) {
    const auto at = static_cast<std::size_t>(row.luma);
    table[at] = row.outline;
    drawn[at] = false;
  }
  Thin(table, drawn);
  return table;
}

}  // namespace orvo
