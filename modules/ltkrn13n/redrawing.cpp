#include "ltkrn13n/redrawing.h"

#include <cstring>

namespace modules {

Redrawing::Redrawing(struct_LEAD_Bitmap* bitmap) : bitmap_(bitmap) {
  Require(bitmap != nullptr && bitmap->width > 0, kModuleNoBitmap);
  Require(!KernelHasStatusCallback() || OwnImage(*bitmap), kModuleNoMemory);
  source_.emplace(bitmap->block);
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
  ExchangeBlock(bitmap, std::move(block_));
  return kModuleSuccess;
}

}  // namespace modules
