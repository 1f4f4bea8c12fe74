#include "ltimg13n/adjustment.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <utility>

#include "common/status.h"

namespace modules {

// While a callback may run, which could free any block, no image is lent.
Adjustment::Adjustment(struct_LEAD_Bitmap* bitmap) noexcept : bitmap_(bitmap) {
  const bool isReady = bitmap != nullptr && (!KernelHasStatusCallback() || OwnImage(*bitmap));
  hasMemory_ = isReady || bitmap == nullptr;
  image_.emplace(isReady ? bitmap->block : nullptr);
}

int Adjustment::obstacle() const {
  if (!hasMemory_) return kModuleNoMemory;
  if (!*image_) return kModuleNoBitmap;
  return image().depth == 1 ? kModuleDepthNotSupported : kModuleSuccess;
}

int Adjustment::changeRows(const RowChange& change) {
  const Pixels& source = image();
  if (!IsLent(*bitmap_) && !KernelHasStatusCallback()) {
    for (int y = 0; y < source.height; ++y) change(source, source, y);
    return kModuleSuccess;
  }
  OwnedBlock changed = NewWithPaletteOf(*image_);
  {
    const LockedDib target(changed.get());
    if (!target) return kModuleNoMemory;
    ForEachRow(source.height, [&](int y) {
      std::memcpy(target->row(y), source.row(y), source.stride);
      change(source, *target, y);
    });
  }
  image_.reset();
  ExchangeBlock(*bitmap_, std::move(changed));
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
  if (IsLent(*bitmap_)) {
    if (!OwnImage(*bitmap_)) return kModuleNoMemory;
    image_.emplace(bitmap_->block);
    if (!*image_) return kModuleNoMemory;
  }
  std::copy_n(changed.begin(), count, image().palette);
  return kModuleSuccess;
}

}  // namespace modules
