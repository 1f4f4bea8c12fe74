// Each row of the image is spread once into bytes, one a pixel for gray and three for colour. Three
// such rows, the one in work and its neighbours, are all that is kept: so the image itself can be
// overwritten row by row.
#include "ltimg13n/sharpen.h"

#include <algorithm>
#include <array>
#include <optional>
#include <vector>

#include "common/color_rows.h"
#include "common/palette_search.h"
#include "common/pixel_formats.h"
#include "ltimg13n/adjustment.h"

namespace modules {
namespace {

constexpr int kScale = 1000;  // a change's thousandths
constexpr int kStrongest = 4;
constexpr int kWindow = 9;  // pixels of the mean

class RowSharpener {
 public:
  RowSharpener(const Pixels& image, int change)
      : channels_(BytesAreTones(image) ? 1 : sizeof(Color)),
        strength_(change > 0 ? kStrongest * change : change) {
    const std::size_t bytes = static_cast<std::size_t>(image.width) * channels_;
    for (Row& row : rows_) row.resize(bytes);
    sharp_.resize(bytes);
    columns_.resize(bytes + 2 * channels_);
    if (image.palette != nullptr) palette_.emplace(PaletteColors(image));
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
    std::uint8_t* const to = rowAt(y).data();
    if (channels_ == 1) {
      std::copy_n(source.row(y), sharp_.size(), to);
    } else {
      ReadColors(source, y, reinterpret_cast<Color*>(to));
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
    std::uint8_t* const row = target.row(y);
    if (channels_ == 1) {
      std::copy(sharp_.begin(), sharp_.end(), row);
      return;
    }
    const auto* const colors = reinterpret_cast<const Color*>(sharp_.data());
    WithFormat(target.depth, [&](auto format) {
      for (std::size_t x = 0; x < static_cast<std::size_t>(target.width); ++x) {
        format.write(row, x, recolored(format.read(row, x), colors[x]));
      }
    });
  }

  // A pixel whose colour stays keeps its index, though the palette may repeat that colour.
  std::uint8_t recolored(std::uint8_t index, Color color) {
    return color == palette_->color(index) ? index : palette_->nearest(color);
  }
  template <class Pixel>
  Pixel recolored(Pixel pixel, Color color) {
    return Recolored(pixel, color);
  }

  std::size_t channels_;
  int strength_;  // thousandths of the distance from the mean
  std::optional<PaletteSearch> palette_;
  std::array<Row, 3> rows_;
  Row sharp_;
  std::vector<int> columns_;  // with the border's columns repeated at both ends
};

}  // namespace

int Sharpen(struct_LEAD_Bitmap* bitmap, int change) {
  Adjustment adjustment(bitmap);
  if (const int obstacle = adjustment.obstacle(); obstacle != kModuleSuccess) return obstacle;
  RowSharpener sharpener(adjustment.image(), change);
  return adjustment.changeRows([&sharpener](const Pixels& source, const Pixels& target, int y) {
    sharpener.change(source, target, y);
  });
}

}  // namespace modules
