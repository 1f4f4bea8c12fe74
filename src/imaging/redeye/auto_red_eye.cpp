#include "imaging/redeye/auto_red_eye.h"

#include <algorithm>

#include "imaging/redeye/color_planes.h"
#include "imaging/redeye/decisions.h"
#include "imaging/redeye/eyes.h"
#include "imaging/redeye/skin_regions.h"
#include "imaging/results.h"
#include "imaging/utilities.h"
#include "imaging/working_image.h"

namespace orvo {

namespace {

struct Image {
  const std::uint8_t* source;
  std::uint8_t* target;
  std::size_t stride;

  [[nodiscard]] std::size_t at(std::int32_t x, std::int32_t y) const {
    return stride * static_cast<std::size_t>(y) + 3 * static_cast<std::size_t>(x);
  }
};

std::size_t PixelsOf(const Box& box) {
  return static_cast<std::size_t>(box.width()) * static_cast<std::size_t>(box.height());
}

// Every step-th pixel of every step-th row, of the box.
void FillPlanes(const Image& image, const Box& box, std::int32_t step, const PlaneView& planes) {
  for (std::int32_t row = 0; row < box.height() / step; ++row) {
    FillPlaneRow(image.source + image.at(box.left, box.top + row * step), box.width() / step, step,
                 planes, row);
  }
}

// The edge of the rectangle is not written.
void WriteEye(const Image& image, const Box& eye, const Box& region, const PlaneView& planes) {
  for (std::int32_t y = eye.top + 1; y < eye.bottom; ++y) {
    for (std::int32_t x = eye.left + 1; x < eye.right; ++x) {
      const std::size_t at = planes.at(x - region.left, y - region.top);
      WritePixel(image.target + image.at(x, y), {planes.y[at], planes.cb[at], planes.cr[at]});
    }
  }
}

std::size_t LargestRegion(const RedEyeScan& scan, int regions) {
  std::size_t largest = 0;
  for (int i = 0; i < regions; ++i) largest = std::max(largest, PixelsOf(scan.regionRects[i]));
  return largest;
}

}  // namespace

int ImgAutoRedEye(const std::uint8_t* source, std::uint8_t* target, std::uint32_t width,
                  std::uint32_t height) noexcept {
  const Image image{source, target, WorkingStride(width, kColorDepth)};
  ImgCopy(target, source, image.stride * height);
  const Box all{0, 0, static_cast<std::int32_t>(width) - 1, static_cast<std::int32_t>(height) - 1};
  const std::int32_t reduction = std::max(std::max(all.width(), all.height()) >> 8, 1);
  const std::int32_t reducedWidth = all.width() / reduction;
  const std::int32_t reducedHeight = all.height() / reduction;

  ColorPlanes reducedPlanes;
  if (!reducedPlanes.allocate(PixelsOf({0, 0, reducedWidth - 1, reducedHeight - 1}))) {
    return kImgNoMemory;
  }
  const PlaneView reduced = reducedPlanes.view(reducedWidth, reducedHeight);
  FillPlanes(image, all, reduction, reduced);
  RedEyeScan scan{};
  const auto regions = ImgFindSkinRegions(scan, reduced, reducedWidth, reducedHeight, reduction);
  if (!regions) return kImgNoMemory;
  if (*regions == 0) return kImgNotFound;

  // All memory is taken before the first pixel changes.
  const bool isReduced = reduction > 1;
  const std::size_t largest = LargestRegion(scan, *regions);
  ColorPlanes regionPlanes;
  EyeMasks masks;
  if ((isReduced && !regionPlanes.allocate(largest)) || !masks.allocate(largest)) {
    return kImgNoMemory;
  }
  int found = 0;
  for (int region = 0; region < *regions; ++region) {
    const Box& rect = scan.regionRects[region];
    // Planes that serve as they are keep what earlier regions changed in them.
    const PlaneView planes = isReduced ? regionPlanes.view(rect.width(), rect.height())
                                       : reduced.from(rect.left, rect.top);
    if (isReduced) FillPlanes(image, rect, 1, planes);
    const int eyes = ImgFindEyesInRegion(scan, planes, region, masks);
    const int kept = KeepBelievableEyes(scan, region, eyes);
    for (int i = 0; i < kept; ++i) WriteEye(image, scan.eyeRects[i], rect, planes);
    found += kept;
  }
  return found > 0 ? kImgDone : kImgNotFound;
}

}  // namespace orvo
