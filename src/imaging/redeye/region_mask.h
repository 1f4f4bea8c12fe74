// The mask on which shapes are found, and the two things done with it: opening and filling.
#ifndef ORVO_IMAGING_REDEYE_REGION_MASK_H
#define ORVO_IMAGING_REDEYE_REGION_MASK_H

#include <cstddef>
#include <cstdint>
#include <span>

#include "imaging/utilities.h"

namespace orvo {

// A rectangle of pixels, all four ends included.
struct Box {
  std::int32_t left;
  std::int32_t top;
  std::int32_t right;
  std::int32_t bottom;

  [[nodiscard]] std::int32_t width() const { return right - left + 1; }
  [[nodiscard]] std::int32_t height() const { return bottom - top + 1; }
};

// One byte, 0 or 1, for each pixel and flag. Only interior pixels ever become foreground, so the
// edge stays clear and stops every fill.
struct RegionMask {
  // Room for masks of up to this many pixels; false when there is none.
  [[nodiscard]] bool allocate(std::size_t pixels) noexcept;
  // Starts a mask of this size, all flags clear.
  void start(std::int32_t maskWidth, std::int32_t maskHeight) noexcept;

  [[nodiscard]] std::size_t at(std::int32_t x, std::int32_t y) const {
    return static_cast<std::size_t>(y) * static_cast<std::size_t>(width) +
           static_cast<std::size_t>(x);
  }
  [[nodiscard]] std::size_t pixelCount() const { return at(0, height); }

  std::int32_t width = 0;
  std::int32_t height = 0;
  ImgArray<std::uint8_t> foreground;  // belongs to the shape that is looked for
  ImgArray<std::uint8_t> visited;     // reached by a fill; scratch during an opening
  ImgArray<std::uint32_t> queue;      // of a fill: a pixel enters it once at most
};

struct FilledRegion {
  std::int64_t area;  // pixels, at least 1
  Box box;
  std::int32_t x;  // centroid, cut toward zero
  std::int32_t y;
  std::span<const std::uint32_t> members;  // where in the mask they lie, the seed left out; good
                                           // until the next fill
};

// Keeps of the foreground what five-pixel crosses can cover.
void ImgOpenMask(RegionMask& mask) noexcept;
// The same with squares of 3 x 3.
void OpenMaskBySquares(RegionMask& mask) noexcept;

// Marks the seed as visited and takes the unvisited foreground that hangs together with it, sides
// and corners alike. The seed counts as one pixel, foreground or not. It is an interior pixel,
// unless the mask has none.
FilledRegion ImgFillRegion(std::int32_t seedX, std::int32_t seedY, RegionMask& mask) noexcept;

// Radius of the disk of this area, rounded.
[[nodiscard]] std::uint32_t RadiusOfArea(std::int64_t area) noexcept;

}  // namespace orvo

#endif  // ORVO_IMAGING_REDEYE_REGION_MASK_H
