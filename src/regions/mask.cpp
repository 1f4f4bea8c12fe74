// Rows are combined at full width first, then each mask pixel's columns. Both are plain ANDs of
// bytes: taking a channel out of a pixel and widening it to 8 bits commute with AND, so colours are
// looked at once a mask pixel.
#include "regions/mask.h"

#include <algorithm>
#include <bit>
#include <cstring>

#include "imaginglib/vector_clones.h"

namespace {

constexpr double kScalePerPixel = 0.005;
constexpr std::size_t kExpandedBytes = 4;  // of a palette colour in a row of colours

// target may be a; otherwise it is apart from both.
ORVO_VECTOR_CLONES
void AndBytes(std::uint8_t* target, const std::uint8_t* a, const std::uint8_t* b,
              std::size_t count) {
  for (std::size_t i = 0; i < count; ++i) target[i] = a[i] & b[i];
}

// --- Rows of pixels ------------------------------------------------------------------------------

// Images whose pixels can be combined as they lie in memory: above 8 bits, and gray bytes.
class PlainRows {
 public:
  PlainRows(std::size_t bytesPerPixel, const ChannelMasks& channelMasks)
      : pixelBytes(bytesPerPixel), masks(channelMasks) {}

  void combine(std::uint8_t* colors, const std::uint8_t* row, int width) const {
    AndBytes(colors, colors, row, static_cast<std::size_t>(width) * pixelBytes);
  }

  std::size_t pixelBytes;
  ChannelMasks masks;
};

// Images whose pixels stand for other colours: for each value of a byte the colours of the
// kPixels pixels in it.
template <std::size_t kPixels>
class PaletteRows {
 public:
  explicit PaletteRows(const std::uint8_t* palette) : colors_(kByteValues * kPixels) {
    constexpr std::size_t kDepth = 8 / kPixels;
    for (std::size_t i = 0; i < colors_.size(); ++i) {
      const std::size_t shift = (kPixels - 1 - i % kPixels) * kDepth;
      const std::size_t color = (i / kPixels >> shift) & ((std::size_t{1} << kDepth) - 1);
      std::memcpy(&colors_[i], palette + kExpandedBytes * color, kExpandedBytes);
    }
  }

  void combine(std::uint8_t* colors, const std::uint8_t* row, int width) const {
    const std::size_t count = static_cast<std::size_t>(width);
    const std::size_t wholeBytes = count / kPixels;
    for (std::size_t i = 0; i < wholeBytes; ++i) {
      combineByte(colors + i * kPixels * kExpandedBytes, row[i], kPixels);
    }
    if (const std::size_t rest = count % kPixels; rest != 0) {
      combineByte(colors + wholeBytes * kPixels * kExpandedBytes, row[wholeBytes], rest);
    }
  }

  static constexpr std::size_t pixelBytes = kExpandedBytes;
  static constexpr ChannelMasks masks{0xFF0000, 0x00FF00, 0x0000FF};

 private:
  static constexpr std::size_t kByteValues = 256;

  void combineByte(std::uint8_t* colors, std::uint8_t byte, std::size_t pixels) const {
    std::uint32_t values[kPixels];
    std::memcpy(&values, colors, pixels * kExpandedBytes);
    for (std::size_t k = 0; k < pixels; ++k) values[k] &= colors_[byte * kPixels + k];
    std::memcpy(colors, &values, pixels * kExpandedBytes);
  }

  std::vector<std::uint32_t> colors_;
};

bool IsGrayRamp(const std::uint8_t* palette) {
  for (int tone = 0; tone < 256; ++tone) {
    const std::uint8_t* const color = palette + kExpandedBytes * static_cast<std::size_t>(tone);
    if (color[0] != tone || color[1] != tone || color[2] != tone) return false;
  }
  return true;
}

// --- Mask pixels ---------------------------------------------------------------------------------

// The first of `count` source lines that falls on mask line `line`: the source line s belongs to
// the mask line s * maskCount / count, cut. `line` may be maskCount.
int FirstOf(int line, int count, int maskCount) {
  return static_cast<int>((std::int64_t{line} * count + maskCount - 1) / maskCount);
}

// A channel of a pixel value, widened to 8 bits by repeating its bits, or cut to them.
std::uint32_t Channel(std::uint32_t value, std::uint32_t mask) {
  if (mask == 0) return 0;
  const int shift = std::countr_zero(mask);
  const int bits = std::bit_width(mask >> shift);
  std::uint32_t channel = (value & mask) >> shift;
  if (bits >= 8) return channel >> (bits - 8);
  channel <<= 8 - bits;
  for (int filled = bits; filled < 8; filled *= 2) channel |= channel >> filled;
  return channel;
}

int GrayOf(std::uint32_t value, const ChannelMasks& masks) {
  return static_cast<int>((4 * Channel(value, masks.red) + 3 * Channel(value, masks.green) +
                           Channel(value, masks.blue)) /
                          8);
}

// The AND of a mask pixel's columns. A run of columns is covered by two windows that may overlap,
// each a power of two of columns wide.
class ColumnWindows {
 public:
  ColumnWindows(int width, int maskWidth, std::size_t pixelBytes)
      : columns_(std::bit_floor(static_cast<unsigned>(width / maskWidth))),
        count_(static_cast<std::size_t>(width)),
        pixelBytes_(pixelBytes),
        wider_(count_ * pixelBytes) {}

  // Makes every pixel of a row the AND of the window that begins with it; the last ones, whose
  // windows would not fit, hold nothing of use.
  void widen(std::vector<std::uint8_t>& colors) {
    for (std::size_t step = 1; step < columns_; step *= 2) {
      AndBytes(wider_.data(), colors.data(), colors.data() + step * pixelBytes_,
               (count_ - step) * pixelBytes_);
      colors.swap(wider_);
    }
  }

  // The combined pixel of the columns first <= x < end.
  [[nodiscard]] std::uint32_t pixel(const std::uint8_t* colors, int first, int end) const {
    const std::uint8_t* const a = colors + static_cast<std::size_t>(first) * pixelBytes_;
    const std::uint8_t* const b = colors + (static_cast<std::size_t>(end) - columns_) * pixelBytes_;
    std::uint32_t value = 0;
    for (std::size_t i = pixelBytes_; i-- > 0;) {
      value = value << 8 | static_cast<std::uint32_t>(a[i] & b[i]);
    }
    return value;
  }

 private:
  std::size_t columns_;
  std::size_t count_;
  std::size_t pixelBytes_;
  std::vector<std::uint8_t> wider_;
};

template <class PixelRows>
void FillMask(Mask& mask, const SourceImage& image, const PixelRows& rows, int whiteLevel) {
  ColumnWindows windows(image.width, mask.width, rows.pixelBytes);
  std::vector<std::uint8_t> colors(static_cast<std::size_t>(image.width) * rows.pixelBytes);
  for (int y = 0; y < mask.height; ++y) {
    std::fill(colors.begin(), colors.end(), std::uint8_t{0xFF});
    const int end = FirstOf(y + 1, image.height, mask.height);
    for (int line = FirstOf(y, image.height, mask.height); line < end; ++line) {
      rows.combine(colors.data(), image.rowFromTop(line), image.width);
    }
    windows.widen(colors);
    int first = 0;
    for (int x = 0; x < mask.width; ++x) {
      const int next = FirstOf(x + 1, image.width, mask.width);
      const int gray = GrayOf(windows.pixel(colors.data(), first, next), rows.masks);
      mask.bytes[mask.index(x, y)] = gray < whiteLevel ? 1 : 0;
      first = next;
    }
  }
}

}  // namespace

double MaskScale(const SourceImage& image) {
  return std::min(image.width, image.height) * kScalePerPixel + 1.0;
}

Mask ReduceToMask(const SourceImage& image, double scale, int whiteLevel) {
  Mask mask{static_cast<int>(image.width / scale), static_cast<int>(image.height / scale), {}};
  mask.bytes.resize(mask.index(0, mask.height));
  if (mask.bytes.empty()) return mask;
  if (image.depth > 8) {
    const auto pixelBytes = static_cast<std::size_t>(image.depth) / 8;
    FillMask(mask, image, PlainRows(pixelBytes, image.masks), whiteLevel);
  } else if (image.depth == 8 && IsGrayRamp(image.palette)) {
    FillMask(mask, image, PlainRows(1, {0xFF, 0xFF, 0xFF}), whiteLevel);
  } else if (image.depth == 8) {
    FillMask(mask, image, PaletteRows<1>(image.palette), whiteLevel);
  } else if (image.depth == 4) {
    FillMask(mask, image, PaletteRows<2>(image.palette), whiteLevel);
  } else {
    FillMask(mask, image, PaletteRows<8>(image.palette), whiteLevel);
  }
  return mask;
}
