// How images enter and leave a bitmap. A bitmap's image is the very block that it was given, so
// taking one over and giving it back copies nothing; nor does a copy, before somebody changes it.
#include <cstring>

#include "common/dib_image.h"

namespace {

using modules::LockedDib;
using modules::OwnedBlock;

// Brings a resolution that was stored in the record into the block's header. One that still says
// the same leaves the header alone: pixels per metre tell more than dots per inch.
void StampResolution(const struct_LEAD_Bitmap& bitmap, DibHandle block) {
  if (bitmap.width <= 0) return;  // the block was never understood
  const orvo::BlockLock lock(block);
  if (!lock) return;
  auto* const header = reinterpret_cast<BITMAPINFOHEADER*>(lock.bytes());
  if (orvo::DotsPerInch(header->biXPelsPerMeter) != bitmap.xResolution) {
    header->biXPelsPerMeter = orvo::PixelsPerMetre(bitmap.xResolution);
  }
  if (orvo::DotsPerInch(header->biYPelsPerMeter) != bitmap.yResolution) {
    header->biYPelsPerMeter = orvo::PixelsPerMetre(bitmap.yResolution);
  }
}

bool IsUsable(const BITMAPINFOHEADER& header) {
  return orvo::IsDibDepth(header.biBitCount) &&
         orvo::DibLayoutFor(header.biWidth, header.biHeight, header.biBitCount);
}

// Whether the block is an image whose rows begin there.
bool HoldsAsUsual(DibHandle block, const void* pixels) {
  const LockedDib image(block);
  return image && image->bits == pixels;
}

}  // namespace

// The record need not be initialised: whatever it holds is overwritten, nothing is freed. A block
// that cannot be used is held all the same, so that L_ChangeToDIB gives it back.
int L_ChangeFromDIB(struct_LEAD_Bitmap* bitmap, DibHandle dib) {
  if (bitmap == nullptr) return kModuleNoBitmap;
  *bitmap = {};
  bitmap->block = dib;
  modules::Describe(*bitmap);
  return bitmap->width > 0 ? kModuleSuccess : kModuleNoBitmap;
}

DibHandle L_ChangeToDIB(struct_LEAD_Bitmap* bitmap) {
  if (bitmap == nullptr) return nullptr;
  if (!modules::OwnImage(*bitmap)) return nullptr;
  StampResolution(*bitmap, bitmap->block);
  DibHandle block = bitmap->block;
  *bitmap = {};
  return block;
}

DibHandle L_ChangeToDIB2(struct_LEAD_Bitmap* bitmap, unsigned /*flags*/) {
  return L_ChangeToDIB(bitmap);
}

// The palette lies behind the header, always 2^depth entries, whatever biClrUsed says.
int L_ConvertFromDIB(struct_LEAD_Bitmap* bitmap, const BITMAPINFOHEADER* header,
                     const void* pixels) {
  if (bitmap == nullptr) return kModuleNoBitmap;
  *bitmap = {};
  if (header == nullptr || pixels == nullptr || !IsUsable(*header)) return kModuleNoBitmap;
  if (const DibHandle block = GlobalHandle(header); HoldsAsUsual(block, pixels)) {
    modules::Lend(*bitmap, block);
    return kModuleSuccess;
  }
  OwnedBlock copy = modules::NewDibOf(*header);
  {
    const LockedDib target(copy.get());
    if (!target) return kModuleNoMemory;
    if (target->palette != nullptr) {
      std::memcpy(target->palette, header + 1, orvo::DibPaletteBytes(target->depth));
    }
    std::memcpy(target->bits, pixels, target->stride * static_cast<std::size_t>(target->height));
    modules::Describe(*bitmap, target);
  }
  bitmap->block = copy.release();
  return kModuleSuccess;
}

DibHandle L_ConvertToDIB(struct_LEAD_Bitmap* bitmap) {
  if (bitmap == nullptr) return nullptr;
  const LockedDib image(bitmap->block);
  if (!image) return nullptr;
  OwnedBlock copy = modules::CopyOf(image);
  StampResolution(*bitmap, copy.get());
  return copy.release();
}

int L_FreeBitmap(struct_LEAD_Bitmap* bitmap) {
  if (bitmap == nullptr) return kModuleNoBitmap;
  modules::ExchangeBlock(*bitmap, OwnedBlock());
  *bitmap = {};
  return kModuleSuccess;
}
