// Rows are combined at full width first, then the columns of each mask pixel.
#include "imaging/regions/mask.h"

#include <algorithm>
#include <bit>
#include <cstring>

#include "imaging/regions/and_row.h"
#include "imaging/regions/row_combiner.h"

namespace orvo {

namespace {

constexpr double kScalePerPixel = 0.005;

// The first of `count` source lines that falls on mask line `line`: the source line s belongs to
// the mask line s * maskCount / count, cut. `line` may be maskCount.
int FirstOf(int line, int count, int maskCount) {
  return static_cast<int>((std::int64_t{line} * count + maskCount - 1) / maskCount);
}

// Takes one channel out of a pixel, widened to 8 bits by repeating its bits, or cut to them.
class ChannelReader {
 public:
  explicit ChannelReader(std::uint32_t mask)
      : mask_(mask),
        shift_(mask == 0 ? 0 : std::countr_zero(mask)),
        bits_(mask == 0 ? kChannelBits : static_cast<int>(std::bit_width(mask >> shift_))) {}

  [[nodiscard]] std::uint32_t read(std::uint32_t pixel) const {
    std::uint32_t channel = (pixel & mask_) >> shift_;
    if (bits_ >= kChannelBits) return channel >> (bits_ - kChannelBits);
    channel <<= kChannelBits - bits_;
    for (int filled = bits_; filled < kChannelBits; filled *= 2) channel |= channel >> filled;
    return channel;
  }

 private:
  static constexpr int kChannelBits = 8;

  std::uint32_t mask_;
  int shift_;
  int bits_;
};

class GrayReader {
 public:
  explicit GrayReader(const ChannelMasks& masks)
      : red_(masks.red), green_(masks.green), blue_(masks.blue) {}

  [[nodiscard]] int read(std::uint32_t pixel) const {
    return static_cast<int>((4 * red_.read(pixel) + 3 * green_.read(pixel) + blue_.read(pixel)) /
                            8);
  }

 private:
  ChannelReader red_;
  ChannelReader green_;
  ChannelReader blue_;
};

// The AND of a mask pixel's columns: two windows that may overlap cover them, each a power of two
// of columns wide.
class ColumnWindows {
 public:
  ColumnWindows(int width, int maskWidth, std::size_t pixelBytes)
      : columns_(std::bit_floor(static_cast<unsigned>(width / maskWidth))),
        count_(static_cast<std::size_t>(width)),
        pixelBytes_(pixelBytes),
        wider_(rowBytes()) {}

  // A row of pixels, and enough to read the last one as four bytes.
  [[nodiscard]] std::size_t rowBytes() const {
    return count_ * pixelBytes_ + sizeof(std::uint32_t) - 1;
  }

  // Makes every pixel of a row the AND of the window that begins with it; the last ones, whose
  // windows would not fit, hold nothing of use.
  void widen(std::vector<std::uint8_t>& colors) {
    for (std::size_t step = 1; step < columns_; step *= 2) {
      ORVO_BEST(AndBytes)
      (wider_.data(), colors.data(), colors.data() + step * pixelBytes_,
       (count_ - step) * pixelBytes_);
      colors.swap(wider_);
    }
  }

  // The combined pixel of the columns first <= x < end of a widened row. What lies beyond the
  // pixel in the four bytes is another's.
  [[nodiscard]] std::uint32_t pixel(const std::vector<std::uint8_t>& colors, int first,
                                    int end) const {
    std::uint32_t a = 0;
    std::uint32_t b = 0;
    std::memcpy(&a, colors.data() + static_cast<std::size_t>(first) * pixelBytes_, sizeof a);
    std::memcpy(&b, colors.data() + (static_cast<std::size_t>(end) - columns_) * pixelBytes_,
                sizeof b);
    return a & b;
  }

 private:
  std::size_t columns_;
  std::size_t count_;
  std::size_t pixelBytes_;
  std::vector<std::uint8_t> wider_;
};

}  // namespace

double MaskScale(const SourceImage& image) {
  return std::min(image.width, image.height) * kScalePerPixel + 1.0;
}

Mask ReduceToMask(const SourceImage& image, double scale, int whiteLevel) {
  Mask mask{static_cast<int>(image.width / scale), static_cast<int>(image.height / scale), {}};
  mask.bytes.resize(mask.index(0, mask.height));
  if (mask.bytes.empty()) return mask;

  std::vector<int> columns;
  for (int x = 0; x <= mask.width; ++x) columns.push_back(FirstOf(x, image.width, mask.width));
  const auto rows = CombinerFor(image);
  const GrayReader gray(rows->masks());
  ColumnWindows windows(image.width, mask.width, rows->pixelBytes());
  std::vector<std::uint8_t> colors(windows.rowBytes());
  // From the bottom up, which is the order in memory.
  for (int y = mask.height - 1; y >= 0; --y) {
    rows->start();
    const int first = FirstOf(y, image.height, mask.height);
    for (int line = FirstOf(y + 1, image.height, mask.height) - 1; line >= first; --line) {
      rows->add(image.rowFromTop(line));
    }
    rows->take(colors.data());
    windows.widen(colors);
    auto target = mask.bytes.begin() + static_cast<std::ptrdiff_t>(mask.index(0, y));
    for (auto column = columns.begin(); column + 1 != columns.end(); ++column) {
      const std::uint32_t pixel = windows.pixel(colors, column[0], column[1]);
      *target++ = gray.read(pixel) < whiteLevel ? 1 : 0;
    }
  }
  return mask;
}

}  // namespace orvo
