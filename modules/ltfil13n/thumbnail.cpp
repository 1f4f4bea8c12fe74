#include "ltfil13n/thumbnail.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#include "common/color.h"
#include "common/dib_image.h"
#include "common/status.h"
#include "ltfil13n/source_file.h"

namespace modules {
namespace {

// What loading takes of the scale of progress; resizing takes the rest.
constexpr int kLoadShare = 80;
// A page is decoded to at least so many times the thumbnail's measures; the rest of the way down is
// averaged, so that fine lines stay even.
constexpr int kReserve = 2;

// The largest size of the image's own shape inside the frame.
Size Fitted(Size image, Size frame) {
  const double scale = std::min(static_cast<double>(frame.width) / image.width,
                                static_cast<double>(frame.height) / image.height);
  const auto scaled = [=](int side, int most) {
    return std::clamp(static_cast<int>(std::lround(side * scale)), 1, most);
  };
  return {scaled(image.width, frame.width), scaled(image.height, frame.height)};
}

// Refuses what would keep the machine busy for minutes and no file header can tell the size of:
// before the work begins, as far as the depth is known.
void RequireRoom(Size size, int depth) {
  constexpr std::uint64_t kMostBytes = 0xFFFFFFFF;
  const std::uint64_t stride =
      orvo::DibStride(static_cast<std::uint64_t>(size.width), static_cast<std::uint64_t>(depth));
  Require(stride <= kMostBytes / static_cast<std::uint64_t>(size.height), kModuleNoMemory);
}

// Gives the depth of the page.
int Load(const char* path, Size frame, struct_LEAD_Bitmap& bitmap) {
  constexpr int kMost = 1 << 20;  // no page is as large; keeps the products small
  const Size least{std::min(frame.width, kMost) * kReserve,
                   std::min(frame.height, kMost) * kReserve};
  const StatusShare share(0, kLoadShare);
  return LoadFile(path, bitmap, &least);
}

void Check(int code) {
  Require(code == kModuleSuccess, code);
}

// Brings the image to tones or colours, which can be averaged and show the background.
void ToWorkingDepth(struct_LEAD_Bitmap& bitmap, Color background) {
  constexpr int kGrayDepth = 8;
  constexpr int kColorDepth = 24;
  if (bitmap.bitsPerPixel >= kColorDepth) return;
  bool isGray = false;
  bool isReady = false;
  if (const LockedDib image(bitmap.block); image) {
    isGray = PaletteIsGray(*image) && IsGray(background);
    isReady = isGray && BytesAreTones(*image);
  }
  if (isReady) return;
  if (isGray) return Check(L_GrayScaleBitmap(&bitmap, kGrayDepth));
  ChangeDepth(bitmap, kColorDepth, 0);
}

void FillRow(std::uint8_t* row, const Pixels& image, Color background) {
  const auto width = static_cast<std::size_t>(image.width);
  if (image.depth == 8) {
    std::memset(row, LumaOf(background), width);
    return;
  }
  const std::size_t step = static_cast<std::size_t>(image.depth) / 8;
  for (std::size_t x = 0; x < width; ++x) std::memcpy(row + x * step, &background, 3);
}

// Centres the image in a frame of the background colour.
void Frame(struct_LEAD_Bitmap& bitmap, Size frame, Color background) {
  if (bitmap.width == frame.width && bitmap.height == frame.height) return;
  OwnedBlock block;
  {
    const LockedDib image(bitmap.block);
    Require(image, kModuleNoBitmap);
    block = NewDibLike(image.header(), frame.width, frame.height, image->depth);
    const LockedDib framed(block.get());
    Require(framed, kModuleNoMemory);
    if (framed->palette != nullptr) FillGrayPalette(*framed);
    for (int y = 0; y < frame.height; ++y) FillRow(framed->row(y), *framed, background);
    const int left = (frame.width - image->width) / 2;
    const int below = frame.height - image->height - (frame.height - image->height) / 2;
    const std::size_t start =
        static_cast<std::size_t>(left) * (static_cast<std::size_t>(image->depth) / 8);
    for (int y = 0; y < image->height; ++y) {
      std::memcpy(framed->row(below + y) + start, image->row(y), image->rowBytes());
    }
  }
  TakeBlock(bitmap, std::move(block));
}

}  // namespace

void MakeThumbnail(const char* path, const LTTHUMBNAILOPTIONS& options,
                   struct_LEAD_Bitmap& bitmap) {
  const Size frame{options.width, options.height};
  Require(frame.width > 0 && frame.height > 0, kModuleBadParameter);
  constexpr int kLeastDepth = 8;  // that is resized
  if (options.keepAspect == 0 || options.forceSize != 0) RequireRoom(frame, kLeastDepth);
  const int ownBits = Load(path, frame, bitmap);
  const StatusShare share(kLoadShare, 100 - kLoadShare);
  const Color background = ColorOfReference(static_cast<unsigned>(options.backgroundColor));
  const int bits = options.bitsPerPixel != 0 ? options.bitsPerPixel : ownBits;
  const Size size = options.keepAspect != 0 ? Fitted({bitmap.width, bitmap.height}, frame) : frame;
  ToWorkingDepth(bitmap, background);
  RequireRoom(options.forceSize != 0 ? frame : size, bitmap.bitsPerPixel);
  Check(L_SizeBitmap(&bitmap, size.width, size.height, kSizeBest));
  if (options.forceSize != 0) Frame(bitmap, frame, background);
  if (bitmap.bitsPerPixel != bits) {
    ChangeDepth(bitmap, bits, static_cast<unsigned>(options.colorResolutionFlags));
  }
}

}  // namespace modules
