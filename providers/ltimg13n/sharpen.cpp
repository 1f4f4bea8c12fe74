// Each row of the image is spread once into bytes, one a pixel for gray and three for colour. Three
// such rows, the one in work and its neighbours, are all that is kept: so the image itself can be
// overwritten row by row.
#include "ltimg13n/sharpen.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <vector>

#include "ltimg13n/adjustment.h"
#include "ltimg13n/palette_match.h"

namespace provider {
namespace {

constexpr int kScale = 1000;  // a change's thousandths
constexpr int kStrongest = 4;
constexpr int kWindow = 9;  // pixels of the mean

std::uint8_t IndexAt(const Pixels& image, const std::uint8_t* row, int x) {
  if (image.depth == 8) return row[x];
  return x % 2 == 0 ? row[x / 2] >> 4 : row[x / 2] & 15;
}

void SetIndexAt(const Pixels& image, std::uint8_t* row, int x, std::uint8_t index) {
  if (image.depth == 8) {
    row[x] = index;
  } else if (x % 2 == 0) {
    row[x / 2] = static_cast<std::uint8_t>((row[x / 2] & 15) | index << 4);
  } else {
    row[x / 2] = static_cast<std::uint8_t>((row[x / 2] & 0xF0) | index);
  }
}

std::uint16_t PixelAt(const std::uint8_t* row, int x) {
  std::uint16_t pixel = 0;
  std::memcpy(&pixel, row + 2 * x, sizeof pixel);
  return pixel;
}

class RowSharpener {
 public:
  RowSharpener(const Pixels& image, bool grayByTone, int change)
      : channels_(grayByTone ? 1 : 3),
        strength_(change > 0 ? kStrongest * change : change),
        match_(image) {
    const std::size_t bytes = static_cast<std::size_t>(image.width) * channels_;
    for (Row& row : rows_) row.resize(bytes);
    sharp_.resize(bytes);
    columns_.resize(bytes + 2 * channels_);
  }

  void change(const Pixels& source, const Pixels& target, int y) {
    const int last = source.height - 1;
    if (y == 0) spread(source, 0);
    if (y < last) spread(source, y + 1);
    sharpen(rowAt(std::max(y - 1, 0)), rowAt(y), rowAt(std::min(y + 1, last)));
    store(target, y);
  }

 private:
  using Row = std::vector<std::uint8_t>;

  Row& rowAt(int y) { return rows_[static_cast<std::size_t>(y) % rows_.size()]; }

  void spread(const Pixels& source, int y) {
    const std::uint8_t* const from = source.row(y);
    std::uint8_t* to = rowAt(y).data();
    if (channels_ == 1 || source.depth == 24) {
      std::copy_n(from, sharp_.size(), to);
      return;
    }
    for (int x = 0; x < source.width; ++x, to += 3) {
      const Color color = source.depth == 32 ? Color{from[4 * x], from[4 * x + 1], from[4 * x + 2]}
                          : source.depth == 16 ? ColorOf555(PixelAt(from, x))
                                               : match_.color(IndexAt(source, from, x));
      to[0] = color.blue;
      to[1] = color.green;
      to[2] = color.red;
    }
  }

  // Sums of three first down the columns, then along the row.
  void sharpen(const Row& above, const Row& here, const Row& below) {
    const std::size_t bytes = here.size();
    int* const columns = columns_.data();
    for (std::size_t i = 0; i < bytes; ++i) columns[channels_ + i] = above[i] + here[i] + below[i];
    std::copy_n(columns + channels_, channels_, columns);
    std::copy_n(columns + bytes, channels_, columns + bytes + channels_);
    constexpr int kUnit = kWindow * kScale;
    for (std::size_t i = 0; i < bytes; ++i) {
      const int sum = columns[i] + columns[i + channels_] + columns[i + 2 * channels_];
      const int scaled = here[i] * kUnit + (kWindow * here[i] - sum) * strength_;
      sharp_[i] = ClampedTone((std::max(scaled, 0) + kUnit / 2) / kUnit);
    }
  }

  void store(const Pixels& target, int y) {
    std::uint8_t* const to = target.row(y);
    const std::uint8_t* from = sharp_.data();
    if (channels_ == 1 || target.depth == 24) {
      std::copy_n(from, sharp_.size(), to);
      return;
    }
    for (int x = 0; x < target.width; ++x, from += 3) {
      const Color color{from[0], from[1], from[2]};
      if (target.depth == 32) {
        std::copy_n(from, 3, to + 4 * x);
      } else if (target.depth == 16) {
        const std::uint16_t pixel = With555(PixelAt(to, x), color);
        std::memcpy(to + 2 * x, &pixel, sizeof pixel);
      } else {
        SetIndexAt(target, to, x, match_.nearest(color, IndexAt(target, to, x)));
      }
    }
  }

  std::size_t channels_;
  int strength_;  // thousandths of the distance from the mean
  PaletteMatch match_;
  std::array<Row, 3> rows_;
  Row sharp_;
  std::vector<int> columns_;  // with the border's columns repeated at both ends
};

}  // namespace

int Sharpen(struct_LEAD_Bitmap* bitmap, int change) {
  Adjustment adjustment(bitmap);
  if (const int obstacle = adjustment.obstacle(); obstacle != kVendorSuccess) return obstacle;
  RowSharpener sharpener(adjustment.image(), adjustment.isGrayByTone(), change);
  return adjustment.changeRows([&sharpener](const Pixels& source, const Pixels& target, int y) {
    sharpener.change(source, target, y);
  });
}

}  // namespace provider
