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

struct Size {
  int width;
  int height;
};

// The largest size of the image's own shape inside the frame.
Size Fitted(Size image, Size frame) {
  const double scale = std::min(static_cast<double>(frame.width) / image.width,
                                static_cast<double>(frame.height) / image.height);
  const auto scaled = [=](int side, int most) {
    return std::clamp(static_cast<int>(std::lround(side * scale)), 1, most);
  };
  return {scaled(image.width, frame.width), scaled(image.height, frame.height)};
}

int Load(const char* path, Size frame, struct_LEAD_Bitmap& bitmap) {
  constexpr int kFirstPage = 1;
  SourceFile source;
  if (const int code = FindSource(path, source); code != kModuleSuccess) return code;
  const StatusShare share(0, kLoadShare);
  if (source.codec->loadAtLeast == nullptr) {
    return source.codec->load(source.path.c_str(), kFirstPage, bitmap);
  }
  constexpr int kMost = 1 << 20;  // no page is as large; keeps the products small
  return source.codec->loadAtLeast(source.path.c_str(), kFirstPage,
                                   std::min(frame.width, kMost) * kReserve,
                                   std::min(frame.height, kMost) * kReserve, bitmap);
}

Color BackgroundOf(const LTTHUMBNAILOPTIONS& options) {
  const auto color = static_cast<unsigned>(options.backgroundColor);  // red in the lowest byte
  return {static_cast<std::uint8_t>(color >> 16), static_cast<std::uint8_t>(color >> 8),
          static_cast<std::uint8_t>(color)};
}

int ChangeDepth(struct_LEAD_Bitmap& bitmap, int bits, unsigned flags) {
  return L_ColorResBitmap(&bitmap, &bitmap, bits, flags, nullptr, nullptr, nullptr, nullptr,
                          nullptr);
}

// Brings the image to tones or colours, which can be averaged and show the background.
int ToWorkingDepth(struct_LEAD_Bitmap& bitmap, Color background) {
  constexpr int kGrayDepth = 8;
  constexpr int kColorDepth = 24;
  if (bitmap.bitsPerPixel >= kColorDepth) return kModuleSuccess;
  bool isGray = false;
  bool isReady = false;
  if (const LockedDib image(bitmap.block); image) {
    isGray = PaletteIsGray(*image) && IsGray(background);
    isReady = isGray && BytesAreTones(*image);
  }
  if (isReady) return kModuleSuccess;
  return isGray ? L_GrayScaleBitmap(&bitmap, kGrayDepth) : ChangeDepth(bitmap, kColorDepth, 0);
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
int Frame(struct_LEAD_Bitmap& bitmap, Size frame, Color background) {
  if (bitmap.width == frame.width && bitmap.height == frame.height) return kModuleSuccess;
  OwnedBlock block;
  {
    const LockedDib image(bitmap.block);
    if (!image) return kModuleNoBitmap;
    block = NewDibLike(image.header(), frame.width, frame.height, image->depth);
    const LockedDib framed(block.get());
    if (!framed) return kModuleNoMemory;
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
  return kModuleSuccess;
}

int Shrink(struct_LEAD_Bitmap& bitmap, const LTTHUMBNAILOPTIONS& options) {
  const Size frame{options.width, options.height};
  const Color background = BackgroundOf(options);
  const int bits = options.bitsPerPixel != 0 ? options.bitsPerPixel : bitmap.bitsPerPixel;
  const Size size = options.keepAspect != 0 ? Fitted({bitmap.width, bitmap.height}, frame) : frame;
  int code = ToWorkingDepth(bitmap, background);
  if (code == kModuleSuccess) code = L_SizeBitmap(&bitmap, size.width, size.height, kSizeBest);
  if (code == kModuleSuccess && options.forceSize != 0) code = Frame(bitmap, frame, background);
  if (code == kModuleSuccess && bitmap.bitsPerPixel != bits) {
    code = ChangeDepth(bitmap, bits, static_cast<unsigned>(options.colorResolutionFlags));
  }
  return code;
}

}  // namespace

int MakeThumbnail(const char* path, const LTTHUMBNAILOPTIONS& options, struct_LEAD_Bitmap& bitmap) {
  if (options.width <= 0 || options.height <= 0) return kModuleBadParameter;
  int code = Load(path, {options.width, options.height}, bitmap);
  if (code != kModuleSuccess) return code;
  const StatusShare share(kLoadShare, 100 - kLoadShare);
  code = Shrink(bitmap, options);
  if (code != kModuleSuccess) (void)L_FreeBitmap(&bitmap);
  return code;
}

}  // namespace modules
