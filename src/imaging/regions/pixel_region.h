// A set of pixels in bands: rows by ascending y, each a list of horizontal runs by ascending x.
//
// Runs of a row never overlap but may touch: a pixel that fills a one-pixel hole lengthens one of
// its neighbours and leaves the other alone. Nothing that is measured depends on such cuts.
// Coordinates have no range and may be negative.
#ifndef ORVO_IMAGING_REGIONS_PIXEL_REGION_H
#define ORVO_IMAGING_REGIONS_PIXEL_REGION_H

#include <vector>

#include <orvo/platform.h>

namespace orvo {

// The pixels left <= x < right of a row.
struct PixelRun {
  int left;
  int right;
};

struct PixelRow {
  int y;
  std::vector<PixelRun> runs;  // at least one

  // The row's extent, holes between its runs included.
  [[nodiscard]] int left() const { return runs.front().left; }
  [[nodiscard]] int right() const { return runs.back().right; }
};

class PixelRegion {
 public:
  // False when memory ran out; the region is then unchanged.
  [[nodiscard]] bool AddPixel(int x, int y) noexcept;
  [[nodiscard]] bool Contains(int x, int y) const;
  [[nodiscard]] bool IsEmpty() const { return rows_.empty(); }

  // Only for a region that is not empty. The centre is cut toward zero.
  [[nodiscard]] RECT BoundingRect() const;
  [[nodiscard]] POINT Centre() const;

  // Sum of the extents of all rows.
  [[nodiscard]] int RowExtentSum() const;

  // The three below throw std::bad_alloc when memory runs out.
  [[nodiscard]] PixelRegion Union(const PixelRegion& other) const;
  // Exact in whether it is empty. A run that meets several of the other region is paired with the
  // first of them alone, so further common pixels can be missing.
  [[nodiscard]] PixelRegion Intersection(const PixelRegion& other) const;
  // Runs that touch come out joined.
  [[nodiscard]] PixelRegion Translated(int dx, int dy) const;

  // Becomes the union with `other`, whose rows it takes over.
  void Absorb(PixelRegion&& other);

  [[nodiscard]] const std::vector<PixelRow>& rows() const { return rows_; }

 private:
  void Put(int x, int y);

  std::vector<PixelRow> rows_;
};

}  // namespace orvo

#endif  // ORVO_IMAGING_REGIONS_PIXEL_REGION_H
