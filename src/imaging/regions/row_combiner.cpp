#include "imaging/regions/row_combiner.h"

#include <algorithm>
#include <cstring>

#include "imaging/regions/and_row.h"

namespace orvo {

namespace {

constexpr std::size_t kColorBytes = 4;  // blue, green, red, and one of no meaning
constexpr ChannelMasks kColorMasks{0xFF0000, 0x00FF00, 0x0000FF};
constexpr ChannelMasks kGrayMasks{0xFF, 0xFF, 0xFF};
constexpr std::uint32_t kWhite = 0xFFFFFFFF;  // changes nothing that it is combined with
constexpr std::size_t kByteValues = 256;

std::uint32_t ColorAt(const std::uint8_t* palette, std::size_t index) {
  std::uint32_t color = 0;
  std::memcpy(&color, palette + kColorBytes * index, sizeof color);
  return color;
}

// --- Pixels that can be combined as they are -----------------------------------------------------

// Above 8 bits, and gray bytes: what takes a channel out of a pixel and widens it to 8 bits
// commutes with AND.
class PlainRows final : public RowCombiner {
 public:
  PlainRows(int width, std::size_t pixelBytes, const ChannelMasks& masks)
      : RowCombiner(pixelBytes, masks), row_(static_cast<std::size_t>(width) * pixelBytes) {}

  void start() override { std::fill(row_.begin(), row_.end(), std::uint8_t{0xFF}); }
  void add(const std::uint8_t* row) override {
    ORVO_BEST(AndBytes)(row_.data(), row_.data(), row, row_.size());
  }
  void take(std::uint8_t* colors) const override { std::memcpy(colors, row_.data(), row_.size()); }

 private:
  std::vector<std::uint8_t> row_;
};

// --- Pixels that stand for other colours ---------------------------------------------------------

class ByteIndexRows final : public RowCombiner {
 public:
  ByteIndexRows(int width, const std::uint8_t* palette)
      : RowCombiner(kColorBytes, kColorMasks), row_(static_cast<std::size_t>(width)) {
    for (std::size_t i = 0; i < kByteValues; ++i) colors_[i] = ColorAt(palette, i);
  }

  void start() override { std::fill(row_.begin(), row_.end(), kWhite); }
  void add(const std::uint8_t* row) override {
    ORVO_BEST(AndColors)(row_.data(), &colors_[0], row, row_.size());
  }
  void take(std::uint8_t* colors) const override {
    std::memcpy(colors, row_.data(), row_.size() * kColorBytes);
  }

 private:
  std::vector<std::uint32_t> row_;
  std::uint32_t colors_[kByteValues];
};

// Two pixels a byte, the left one in the upper half.
class NibbleRows final : public RowCombiner {
 public:
  NibbleRows(int width, const std::uint8_t* palette)
      : RowCombiner(kColorBytes, kColorMasks),
        width_(static_cast<std::size_t>(width)),
        bytes_((width_ + 1) / 2),
        row_(bytes_ * 2) {
    for (std::size_t i = 0; i < kByteValues; ++i) {
      left_[i] = ColorAt(palette, i >> 4);
      right_[i] = ColorAt(palette, i & 15);
    }
  }

  void start() override { std::fill(row_.begin(), row_.end(), kWhite); }
  void add(const std::uint8_t* row) override {
    for (std::size_t i = 0; i < bytes_; ++i) {
      row_[2 * i] &= left_[row[i]];
      row_[2 * i + 1] &= right_[row[i]];
    }
  }
  void take(std::uint8_t* colors) const override {
    std::memcpy(colors, row_.data(), width_ * kColorBytes);
  }

 private:
  std::size_t width_;
  std::size_t bytes_;
  std::vector<std::uint32_t> row_;
  std::uint32_t left_[kByteValues];
  std::uint32_t right_[kByteValues];
};

// Two colours need no look at single pixels: a column has the first where some row's bit is clear,
// and the second where some row's bit is set.
class BitRows final : public RowCombiner {
 public:
  BitRows(int width, const std::uint8_t* palette)
      : RowCombiner(kColorBytes, kColorMasks),
        width_(static_cast<std::size_t>(width)),
        allSet_((width_ + 7) / 8),
        allClear_(allSet_.size()),
        first_(ColorAt(palette, 0)),
        second_(ColorAt(palette, 1)) {}

  void start() override {
    std::fill(allSet_.begin(), allSet_.end(), std::uint8_t{0xFF});
    std::fill(allClear_.begin(), allClear_.end(), std::uint8_t{0xFF});
  }
  void add(const std::uint8_t* row) override {
    for (std::size_t i = 0; i < allSet_.size(); ++i) {
      allSet_[i] &= row[i];
      allClear_[i] &= static_cast<std::uint8_t>(~row[i]);
    }
  }
  void take(std::uint8_t* colors) const override {
    for (std::size_t x = 0; x < width_; ++x) {
      const unsigned bit = 0x80U >> x % 8;
      const std::uint32_t color = ((allSet_[x / 8] & bit) != 0 ? kWhite : first_) &
                                  ((allClear_[x / 8] & bit) != 0 ? kWhite : second_);
      std::memcpy(colors + x * kColorBytes, &color, sizeof color);
    }
  }

 private:
  std::size_t width_;
  std::vector<std::uint8_t> allSet_;
  std::vector<std::uint8_t> allClear_;
  std::uint32_t first_;
  std::uint32_t second_;
};

bool IsGrayRamp(const std::uint8_t* palette) {
  for (std::size_t tone = 0; tone < kByteValues; ++tone) {
    const std::uint8_t* const color = palette + kColorBytes * tone;
    if (color[0] != tone || color[1] != tone || color[2] != tone) return false;
  }
  return true;
}

}  // namespace

std::unique_ptr<RowCombiner> CombinerFor(const SourceImage& image) {
  switch (image.depth) {
    case 1:
      return std::make_unique<BitRows>(image.width, image.palette);
    case 4:
      return std::make_unique<NibbleRows>(image.width, image.palette);
    case 8:
      if (IsGrayRamp(image.palette)) {
        return std::make_unique<PlainRows>(image.width, 1, kGrayMasks);
      }
      return std::make_unique<ByteIndexRows>(image.width, image.palette);
    default:
      return std::make_unique<PlainRows>(image.width, static_cast<std::size_t>(image.depth) / 8,
                                         image.masks);
  }
}

}  // namespace orvo
