#include "imaging/regions/pixel_region.h"

#include <algorithm>
#include <new>
#include <utility>

namespace orvo {

namespace {

using Runs = std::vector<PixelRun>;
using Rows = std::vector<PixelRow>;

bool IsAbove(const PixelRow& row, int y) {
  return row.y < y;
}

bool Holds(const Runs& runs, int x) {
  return std::any_of(runs.begin(), runs.end(),
                     [x](const PixelRun& run) { return run.left <= x && x < run.right; });
}

void PutIntoRow(Runs& runs, int x) {
  if (Holds(runs, x)) return;
  for (PixelRun& run : runs) {
    if (run.left == x + 1) {
      run.left = x;
      return;
    }
    if (run.right == x) {
      run.right = x + 1;
      return;
    }
  }
  const auto place = std::upper_bound(
      runs.begin(), runs.end(), x, [](int left, const PixelRun& run) { return left < run.left; });
  runs.insert(place, {x, x + 1});
}

Runs UnitedRuns(const Runs& a, const Runs& b) {
  Runs united;
  united.reserve(a.size() + b.size());
  auto i = a.begin();
  auto j = b.begin();
  while (i != a.end() && j != b.end()) {
    if (i->right <= j->left) {
      united.push_back(*i++);
    } else if (j->right <= i->left) {
      united.push_back(*j++);
    } else {
      united.push_back({std::min(i->left, j->left), std::max(i->right, j->right)});
      ++i;
      ++j;
    }
  }
  united.insert(united.end(), i, a.end());
  united.insert(united.end(), j, b.end());
  return united;
}

Runs SharedRuns(const Runs& a, const Runs& b) {
  Runs shared;
  auto i = a.begin();
  auto j = b.begin();
  while (i != a.end() && j != b.end()) {
    if (i->right <= j->left) {
      ++i;
    } else if (j->right <= i->left) {
      ++j;
    } else {
      shared.push_back({std::max(i->left, j->left), std::min(i->right, j->right)});
      ++i;
      ++j;
    }
  }
  return shared;
}

}  // namespace

bool PixelRegion::AddPixel(int x, int y) noexcept {
  try {
    Put(x, y);
    return true;
  } catch (const std::bad_alloc&) {
    return false;
  }
}

void PixelRegion::Put(int x, int y) {
  const auto row = std::lower_bound(rows_.begin(), rows_.end(), y, IsAbove);
  if (row != rows_.end() && row->y == y) {
    PutIntoRow(row->runs, x);
  } else {
    rows_.insert(row, PixelRow{y, {{x, x + 1}}});
  }
}

bool PixelRegion::Contains(int x, int y) const {
  const auto row = std::lower_bound(rows_.begin(), rows_.end(), y, IsAbove);
  return row != rows_.end() && row->y == y && Holds(row->runs, x);
}

RECT PixelRegion::BoundingRect() const {
  RECT box{rows_.front().left(), rows_.front().y, rows_.front().right(), rows_.back().y + 1};
  for (const PixelRow& row : rows_) {
    box.left = std::min(box.left, row.left());
    box.right = std::max(box.right, row.right());
  }
  return box;
}

POINT PixelRegion::Centre() const {
  const RECT box = BoundingRect();
  return {(box.left + box.right) / 2, (box.top + box.bottom) / 2};
}

int PixelRegion::RowExtentSum() const {
  int sum = 0;
  for (const PixelRow& row : rows_) sum += row.right() - row.left();
  return sum;
}

PixelRegion PixelRegion::Union(const PixelRegion& other) const {
  PixelRegion united(*this);
  united.Absorb(PixelRegion(other));
  return united;
}

void PixelRegion::Absorb(PixelRegion&& other) {
  Rows united;
  united.reserve(rows_.size() + other.rows_.size());
  auto i = rows_.begin();
  auto j = other.rows_.begin();
  while (i != rows_.end() && j != other.rows_.end()) {
    if (i->y < j->y) {
      united.push_back(std::move(*i++));
    } else if (j->y < i->y) {
      united.push_back(std::move(*j++));
    } else {
      united.push_back({i->y, UnitedRuns(i->runs, j->runs)});
      ++i;
      ++j;
    }
  }
  std::move(i, rows_.end(), std::back_inserter(united));
  std::move(j, other.rows_.end(), std::back_inserter(united));
  rows_ = std::move(united);
  other.rows_.clear();
}

PixelRegion PixelRegion::Intersection(const PixelRegion& other) const {
  PixelRegion shared;
  auto i = rows_.begin();
  auto j = other.rows_.begin();
  while (i != rows_.end() && j != other.rows_.end()) {
    if (i->y < j->y) {
      ++i;
    } else if (j->y < i->y) {
      ++j;
    } else {
      Runs runs = SharedRuns(i->runs, j->runs);
      if (!runs.empty()) shared.rows_.push_back({i->y, std::move(runs)});
      ++i;
      ++j;
    }
  }
  return shared;
}

PixelRegion PixelRegion::Translated(int dx, int dy) const {
  PixelRegion moved;
  for (const PixelRow& row : rows_) {
    for (const PixelRun& run : row.runs) {
      for (int x = run.left; x < run.right; ++x) moved.Put(x + dx, row.y + dy);
    }
  }
  return moved;
}

}  // namespace orvo
