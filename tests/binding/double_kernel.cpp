// Double of ltkrn13n.dll: bitmaps that really move, with operations that only invert.
#include <algorithm>
#include <utility>

#include "double_log.h"

using doubles::Called;
using doubles::Operate;
using doubles::TheState;

namespace {

std::string ShapeOf(const BITMAPINFOHEADER& header) {
  return std::to_string(header.biWidth) + "x" + std::to_string(header.biHeight) + "x" +
         std::to_string(header.biBitCount);
}

bool IsZero(const struct_LEAD_Bitmap& bitmap) {
  return bitmap.width == 0 && bitmap.height == 0 && bitmap.bitsPerPixel == 0 &&
         bitmap.block == nullptr;
}

// Writes the record's resolution into the block's header.
void Stamp(const struct_LEAD_Bitmap& bitmap) {
  auto* const bytes = static_cast<std::uint8_t*>(GlobalLock(bitmap.block));
  if (orvo::DibLayoutOf(bytes, GlobalSize(bitmap.block)) && bitmap.bitsPerPixel != 0) {
    BITMAPINFOHEADER header = orvo::DibHeaderOf(bytes);
    header.biXPelsPerMeter = orvo::PixelsPerMetre(bitmap.xResolution);
    header.biYPelsPerMeter = orvo::PixelsPerMetre(bitmap.yResolution);
    std::memcpy(bytes, &header, sizeof header);
  }
  if (bytes != nullptr) GlobalUnlock(bitmap.block);
}

DibHandle GiveBack(struct_LEAD_Bitmap* bitmap, int code) {
  Stamp(*bitmap);
  DibHandle block = bitmap->block;
  *bitmap = {};
  if (code != kModuleSuccess) return GlobalFree(block);
  if (!TheState().freshHandles) return block;
  void* const fresh = doubles::CopyOfBlock(block);
  if (fresh == nullptr) return block;
  GlobalFree(block);
  return fresh;
}

// Between 24 bits and 16 (5-5-5) or 32; each pixel by itself.
std::uint32_t LoadPixel(const std::uint8_t* at, int depth) {
  const auto byte = [at](int i) { return static_cast<std::uint32_t>(at[i]); };
  if (depth != 16) return byte(0) | byte(1) << 8 | byte(2) << 16;
  const std::uint32_t packed = byte(0) | byte(1) << 8;
  return (packed & 31) << 3 | (packed >> 5 & 31) << 11 | (packed >> 10 & 31) << 19;
}

void StorePixel(std::uint8_t* at, int depth, std::uint32_t color) {
  if (depth == 16) color = (color >> 3 & 31) | (color >> 11 & 31) << 5 | (color >> 19 & 31) << 10;
  for (int i = 0; i < std::min(depth / 8, 3); ++i) {
    at[i] = static_cast<std::uint8_t>(color >> (8 * i));
  }
}

bool Convert(struct_LEAD_Bitmap* bitmap, int depth) {
  const auto layout = orvo::DibLayoutFor(bitmap->width, bitmap->height, depth);
  const std::size_t size = GlobalSize(bitmap->block);
  void* const target = GlobalAlloc(orvo::kDibBlockFlags, layout->totalBytes);
  auto* const to = static_cast<std::uint8_t*>(GlobalLock(target));
  const auto* const from = static_cast<const std::uint8_t*>(GlobalLock(bitmap->block));
  const bool locked = to != nullptr && from != nullptr;
  if (locked) {
    const auto source = orvo::DibLayoutOf(from, size);
    BITMAPINFOHEADER header = orvo::DibHeaderOf(from);
    header.biBitCount = static_cast<std::uint16_t>(depth);
    std::memcpy(to, &header, sizeof header);
    for (int y = 0; y < layout->height; ++y) {
      const auto row = static_cast<std::size_t>(y);
      for (int x = 0; x < layout->width; ++x) {
        StorePixel(
            to + layout->pixelOffset + row * layout->stride + x * depth / 8, depth,
            LoadPixel(from + source->pixelOffset + row * source->stride + x * source->depth / 8,
                      source->depth));
      }
    }
  }
  if (to != nullptr) GlobalUnlock(target);
  if (from != nullptr) GlobalUnlock(bitmap->block);
  GlobalFree(locked ? bitmap->block : target);
  if (locked) bitmap->block = target;
  if (locked) bitmap->bitsPerPixel = depth;
  return locked;
}

}  // namespace

int L_ChangeFromDIB(struct_LEAD_Bitmap* bitmap, DibHandle dib) {
  Called("L_ChangeFromDIB", bitmap, dib);
  doubles::Hold(bitmap, dib);
  return kModuleSuccess;
}

DibHandle L_ChangeToDIB(struct_LEAD_Bitmap* bitmap) {
  return GiveBack(bitmap, Called("L_ChangeToDIB", bitmap));
}

DibHandle L_ChangeToDIB2(struct_LEAD_Bitmap* bitmap, unsigned flags) {
  return GiveBack(bitmap, Called("L_ChangeToDIB2", bitmap, flags));
}

int L_ConvertFromDIB(struct_LEAD_Bitmap* bitmap, const BITMAPINFOHEADER* header,
                     const void* pixels) {
  const auto* const bytes = reinterpret_cast<const std::uint8_t*>(header);
  const auto offset = static_cast<const std::uint8_t*>(pixels) - bytes;
  Called("L_ConvertFromDIB", bitmap, ShapeOf(*header),
         std::string("+").append(std::to_string(offset)),
         IsZero(*bitmap) ? "zeroed" : "not zeroed");
  const auto layout = orvo::DibLayoutFor(header->biWidth, header->biHeight, header->biBitCount);
  void* const copy = GlobalAlloc(orvo::kDibBlockFlags, layout->totalBytes);
  void* const to = GlobalLock(copy);
  if (to == nullptr) {
    GlobalFree(copy);
    return kModuleNoMemory;
  }
  std::memcpy(to, bytes, layout->totalBytes);
  GlobalUnlock(copy);
  doubles::Hold(bitmap, copy);
  return kModuleSuccess;
}

DibHandle L_ConvertToDIB(struct_LEAD_Bitmap* bitmap) {
  Called("L_ConvertToDIB", bitmap);
  Stamp(*bitmap);
  return doubles::CopyOfBlock(bitmap->block);
}

int L_FreeBitmap(struct_LEAD_Bitmap* bitmap) {
  Called("L_FreeBitmap", bitmap);
  GlobalFree(bitmap->block);
  *bitmap = {};
  return kModuleSuccess;
}

int L_IsGrayScaleBitmap(struct_LEAD_Bitmap* bitmap) {
  const int answer = Called("L_IsGrayScaleBitmap", bitmap);
  const auto* const bytes = static_cast<const std::uint8_t*>(GlobalLock(bitmap->block));
  if (bytes == nullptr) return 0;
  bool gray = bitmap->bitsPerPixel == 8;
  for (std::size_t i = 0; gray && i < orvo::DibPaletteBytes(8); i += 4) {
    const std::uint8_t* const entry = bytes + orvo::kDibHeaderBytes + i;
    gray = entry[0] == entry[1] && entry[1] == entry[2];
  }
  GlobalUnlock(bitmap->block);
  return gray ? answer : 0;
}

StatusCallback L_SetStatusCallBack(StatusCallback callback, void* userData) {
  Called("L_SetStatusCallBack", callback, userData);
  return std::exchange(TheState().installed, callback);
}

int L_DefaultDithering(unsigned mode) {
  return Called("L_DefaultDithering", mode);
}

int L_ColorResBitmap(struct_LEAD_Bitmap* source, struct_LEAD_Bitmap* target, int bits,
                     unsigned flags, void* palette, void* systemPalette, void* colors,
                     void* callback, void* userData) {
  const int code = Called("L_ColorResBitmap", source, target, bits, flags, palette, systemPalette,
                          colors, callback, userData);
  const int from = target->bitsPerPixel;
  const bool real =
      (bits == 24 && (from == 16 || from == 32)) || (from == 24 && (bits == 16 || bits == 32));
  if (code != kModuleSuccess || !real) return Operate(code, target);
  return Convert(target, bits) ? kModuleSuccess : kModuleNoMemory;
}

int L_GrayScaleBitmap(struct_LEAD_Bitmap* bitmap, int bits) {
  return Operate(Called("L_GrayScaleBitmap", bitmap, bits), bitmap);
}

int L_RotateBitmap(struct_LEAD_Bitmap* bitmap, int angle, unsigned flags, unsigned color) {
  return Operate(Called("L_RotateBitmap", bitmap, angle, flags, color), bitmap);
}

int L_SizeBitmap(struct_LEAD_Bitmap* bitmap, int width, int height, unsigned flags) {
  return Operate(Called("L_SizeBitmap", bitmap, width, height, flags), bitmap);
}

int L_TrimBitmap(struct_LEAD_Bitmap* bitmap, int left, int top, int width, int height) {
  return Operate(Called("L_TrimBitmap", bitmap, left, top, width, height), bitmap);
}

int L_VersionInfo(LTVERSIONINFO* info) {
  return Called("L_VersionInfo", static_cast<const void*>(info));
}
