#include "pictures/reduced_loading.h"

#include <algorithm>
#include <array>

#include "common/color_rows.h"
#include "pictures/picture_rows.h"

namespace modules {
namespace {

// Blue, green, red and the fourth byte.
using Sums = std::array<std::uint64_t, 4>;

int Parts(int whole, int part) {
  return (whole - 1) / part + 1;
}

OwnedBlock ReducedBitmap(const Picture& picture, const Pixels& row, int factor) {
  Picture reduced = picture;
  const bool isGray = picture.depth() <= 8 && PaletteIsGray(row);
  reduced.setDepth(isGray ? 8 : std::max(picture.depth(), 24));
  reduced.palette.clear();
  reduced.reversed = false;
  return BitmapFor(reduced, Parts(picture.width, factor), Parts(picture.height, factor));
}

void AddRow(const Pixels& row, int factor, std::vector<Color>& colors, std::vector<Sums>& sums) {
  ReadColors(row, 0, colors.data());
  const std::uint8_t* const fourths = row.depth == 32 ? row.bits + 3 : nullptr;
  for (std::size_t x = 0, place = 0; x < colors.size(); ++place) {
    Sums& sum = sums[place];
    const std::size_t end = std::min(x + static_cast<std::size_t>(factor), colors.size());
    for (; x < end; ++x) {
      sum[0] += colors[x].blue;
      sum[1] += colors[x].green;
      sum[2] += colors[x].red;
      if (fourths != nullptr) sum[3] += fourths[4 * x];
    }
  }
}

// Stores the averages of squares that are so many pixels high.
void StoreRow(const std::vector<Sums>& sums, int width, int factor, int rows, int depth,
              std::uint8_t* row) {
  for (std::size_t place = 0; place < sums.size(); ++place) {
    const int across = std::min(factor, width - static_cast<int>(place) * factor);
    const std::uint64_t count = std::max<std::uint64_t>(
        static_cast<std::uint64_t>(across) * static_cast<unsigned>(rows), 1);
    for (std::size_t part = 0; part < static_cast<std::size_t>(depth) / 8; ++part) {
      *row++ = static_cast<std::uint8_t>((sums[place][part] + count / 2) / count);
    }
  }
}

}  // namespace

OwnedBlock LoadReduced(PictureReader& reader, int factor) {
  reader.start();
  const Picture& picture = reader.picture();
  const OwnedBlock line = BitmapFor(picture, picture.width, 1);
  const LockedDib row(line.get());
  Require(row, kModuleNoMemory);
  OwnedBlock block = ReducedBitmap(picture, *row, factor);
  {
    const LockedDib image(block.get());
    Require(image, kModuleNoMemory);
    PictureRows rows(reader);
    std::vector<Color> colors(static_cast<std::size_t>(picture.width));
    std::vector<Sums> sums(static_cast<std::size_t>(image->width));
    for (int top = 0, y = 0; top < picture.height; top += factor, ++y) {
      const int count = std::min(factor, picture.height - top);
      std::ranges::fill(sums, Sums{});
      for (int i = 0; i < count; ++i) {
        rows.read(row->row(0));
        AddRow(*row, factor, colors, sums);
      }
      StoreRow(sums, picture.width, factor, count, image->depth,
               image->row(picture.bottomUp ? y : image->height - 1 - y));
    }
  }
  return UprightBlock(std::move(block), picture.orientation);
}

}  // namespace modules
