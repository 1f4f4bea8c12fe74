#include "ltkrn13n/redrawing.h"

#include <cstring>

namespace modules {

Redrawing::Redrawing(const struct_LEAD_Bitmap* bitmap)
    : bitmap_(bitmap),
      source_(std::in_place, bitmap == nullptr || bitmap->width <= 0 ? nullptr : bitmap->block) {
  Require(*source_, kModuleNoBitmap);
}

void Redrawing::begin(int width, int height, int depth) {
  block_ = NewDibLike(source_->header(), width, height, depth);
  target_.emplace(block_.get());
  Require(*target_, kModuleNoMemory);
  if (target().palette != nullptr && depth == source().depth) {
    std::memcpy(target().palette, source().palette, orvo::DibPaletteBytes(depth));
  }
}

int Redrawing::finish(struct_LEAD_Bitmap& bitmap) {
  const int xResolution = bitmap_->xResolution;
  const int yResolution = bitmap_->yResolution;
  Describe(bitmap, *target_);
  bitmap.xResolution = xResolution;
  bitmap.yResolution = yResolution;
  source_.reset();
  target_.reset();
  const OwnedBlock old(std::exchange(bitmap.block, block_.release()));
  return kModuleSuccess;
}

}  // namespace modules
