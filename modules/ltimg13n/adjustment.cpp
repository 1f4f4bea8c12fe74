#include "ltimg13n/adjustment.h"

#include <algorithm>
#include <array>
#include <utility>

#include "common/status.h"

namespace modules {
int Adjustment::obstacle() const {
  if (!*image_) return kModuleNoBitmap;
  return image().depth == 1 ? kModuleDepthNotSupported : kModuleSuccess;
}

int Adjustment::changeRows(const RowChange& change) {
  const Pixels& source = image();
  if (!KernelHasStatusCallback()) {
    for (int y = 0; y < source.height; ++y) change(source, source, y);
    return kModuleSuccess;
  }
  OwnedBlock copy = CopyOf(*image_);
  {
    const LockedDib target(copy.get());
    if (!target) return kModuleNoMemory;
    ForEachRow(source.height, [&](int y) { change(source, *target, y); });
  }
  // Only the handle changes: the record's resolution may be newer than the header's.
  image_.reset();
  GlobalFree(std::exchange(bitmap_->block, copy.release()));
  return kModuleSuccess;
}

// NOLINTNEXTLINE(readability-make-member-function-const): the image changes
int Adjustment::changePalette(const ColorChange& change) {
  const auto count = static_cast<std::size_t>(image().paletteSize());
  std::array<RGBQUAD, 256> changed{};
  Progress progress(1);
  if (!progress.report(0)) return kModuleAborted;
  for (std::size_t i = 0; i < count; ++i) {
    const RGBQUAD& entry = image().palette[i];
    const Color color = change(ColorOf(entry));
    changed[i] = {color.blue, color.green, color.red, entry.rgbReserved};
  }
  if (!progress.report(1)) return kModuleAborted;
  std::copy_n(changed.begin(), count, image().palette);
  return kModuleSuccess;
}

}  // namespace modules
