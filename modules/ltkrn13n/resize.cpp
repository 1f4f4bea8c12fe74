// Change of size. Depth and palette stay: where bytes stand for colours of a palette, the nearest
// pixel is taken whatever the flags say, because colours between two entries may not be there.
#include <algorithm>
#include <array>
#include <vector>

#include "common/color_rows.h"
#include "common/guard.h"
#include "common/pixel_formats.h"
#include "ltkrn13n/redrawing.h"
#include "ltkrn13n/resampling.h"

namespace {

using modules::Color;
using modules::ForEachRow;
using modules::Pixels;
using modules::Redrawing;
using modules::Resampling;

// The old pixels in whose area the middles of new pixels lie.
std::vector<std::size_t> NearestOf(int from, int to) {
  std::vector<std::size_t> places;
  const auto unit = static_cast<std::uint64_t>(2) * static_cast<std::uint64_t>(to);
  for (std::uint64_t middle = 1; middle < unit; middle += 2) {
    places.push_back(middle * static_cast<std::uint64_t>(from) / unit);
  }
  return places;
}

void DrawNearest(const Pixels& source, const Pixels& target) {
  const std::vector<std::size_t> rows = NearestOf(source.height, target.height);
  const std::vector<std::size_t> columns = NearestOf(source.width, target.width);
  modules::WithFormat(source.depth, [&](auto format) {
    ForEachRow(target.height, [&](int y) {
      const std::uint8_t* const from =
          source.row(static_cast<int>(rows[static_cast<std::size_t>(y)]));
      std::uint8_t* const to = target.row(y);
      for (std::size_t x = 0; x < columns.size(); ++x) {
        format.write(to, x, format.read(from, columns[x]));
      }
    });
  });
}

// Rows as samples of one byte, 1, 3 or 4 to a pixel; those of 16 bits are widened.
class SampleRows {
 public:
  explicit SampleRows(const Pixels& image) : image_(image) {
    if (image.depth == 16) colors_.resize(static_cast<std::size_t>(image.width));
  }

  [[nodiscard]] std::size_t channels() const {
    return image_.depth == 16 ? 3 : static_cast<std::size_t>(image_.depth / 8);
  }
  const std::uint8_t* read(std::size_t y) {
    const int row = static_cast<int>(y);
    if (image_.depth != 16) return image_.row(row);
    modules::ReadColors(image_, row, colors_.data());
    return &colors_.data()->blue;
  }
  // Where the samples of row y are to be put; store then brings them into the row.
  std::uint8_t* target(int y) { return image_.depth == 16 ? &colors_.data()->blue : image_.row(y); }
  void store(int y) {
    if (image_.depth == 16) modules::WriteColors(image_, y, colors_.data());
  }

 private:
  const Pixels& image_;
  std::vector<Color> colors_;
};

// The weighted sum of a few rows, sample by sample.
void MixRows(SampleRows& rows, const Resampling::Mix& mix, std::vector<float>& sums) {
  std::ranges::fill(sums, 0.0F);
  for (std::size_t i = 0; i < mix.weights.size(); ++i) {
    const std::uint8_t* const row = rows.read(mix.first + i);
    const float weight = mix.weights[i];
    for (std::size_t x = 0; x < sums.size(); ++x) sums[x] += weight * static_cast<float>(row[x]);
  }
}

// The weighted sums of a few pixels of a row, rounded to bytes.
template <std::size_t kChannels>
void MixColumns(const std::vector<float>& line, const Resampling& columns, std::uint8_t* row) {
  for (std::size_t x = 0; x < columns.size(); ++x) {
    const Resampling::Mix mix = columns.mix(x);
    const float* pixel = line.data() + mix.first * kChannels;
    std::array<float, kChannels> sums;
    sums.fill(0.5F);  // so that what is cut off in the end was rounded
    for (const float weight : mix.weights) {
      for (std::size_t c = 0; c < kChannels; ++c) sums[c] += weight * pixel[c];
      pixel += kChannels;
    }
    for (std::size_t c = 0; c < kChannels; ++c) {
      *row++ = static_cast<std::uint8_t>(std::clamp(sums[c], 0.0F, 255.0F));
    }
  }
}

void DrawMixed(const Pixels& source, const Pixels& target, const Resampling& columns,
               const Resampling& rows) {
  SampleRows from(source);
  SampleRows to(target);
  const std::size_t channels = from.channels();
  std::vector<float> line(static_cast<std::size_t>(source.width) * channels);
  const auto mixColumns = channels == 1   ? MixColumns<1>
                          : channels == 3 ? MixColumns<3>
                                          : MixColumns<4>;
  ForEachRow(target.height, [&](int y) {
    MixRows(from, rows.mix(static_cast<std::size_t>(y)), line);
    mixColumns(line, columns, to.target(y));
    to.store(y);
  });
}

void Draw(const Pixels& source, const Pixels& target, unsigned flags) {
  const bool mixes = source.depth > 8 || modules::BytesAreTones(source);
  if (!mixes || (flags & (kSizeBest | kSizeBilinear)) == 0) return DrawNearest(source, target);
  const auto resampling = (flags & kSizeBest) != 0 ? Resampling::Best : Resampling::Bilinear;
  DrawMixed(source, target, resampling(source.width, target.width),
            resampling(source.height, target.height));
}

int Resize(struct_LEAD_Bitmap* bitmap, int width, int height, unsigned flags) {
  Redrawing drawing(bitmap);
  drawing.begin(width, height, drawing.source().depth);
  Draw(drawing.source(), drawing.target(), flags);
  return drawing.finish(*bitmap);
}

}  // namespace

int L_SizeBitmap(struct_LEAD_Bitmap* bitmap, int width, int height, unsigned flags) {
  if (width <= 0 || height <= 0) return kModuleBadParameter;
  return modules::Guarded([=] { return Resize(bitmap, width, height, flags); });
}
