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

// Runs through the old pixels in whose area the middles of new pixels lie.
class NearestStepper {
 public:
  NearestStepper(int from, int to)
      : from_(static_cast<std::uint64_t>(from)), to_(static_cast<std::uint64_t>(to)) {}
  // The next old pixel.
  std::size_t next() {
    const auto place = static_cast<std::size_t>(place_);
    place_ += wholes_;
    rest_ += parts_;
    if (rest_ >= 2 * to_) {
      ++place_;
      rest_ -= 2 * to_;
    }
    return place;
  }

 private:
  std::uint64_t from_;
  std::uint64_t to_;
  std::uint64_t wholes_ = from_ / to_;
  std::uint64_t parts_ = 2 * (from_ % to_);
  std::uint64_t place_ = from_ / (2 * to_);
  std::uint64_t rest_ = from_ % (2 * to_);  // in parts of 1/(2 to)
};

int DrawNearest(const Pixels& source, const Pixels& target) {
  NearestStepper rows(source.height, target.height);
  const auto width = static_cast<std::size_t>(target.width);
  return modules::WithFormat(source.depth, [&](auto format) {
    return ForEachRow(target.height, [&](int y) {
      const std::uint8_t* const from = source.row(static_cast<int>(rows.next()));
      std::uint8_t* const to = target.row(y);
      NearestStepper columns(source.width, target.width);
      for (std::size_t x = 0; x < width; ++x)
        format.write(to, x, format.read(from, columns.next()));
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

int DrawMixed(const Pixels& source, const Pixels& target, const Resampling& columns,
              const Resampling& rows) {
  SampleRows from(source);
  SampleRows to(target);
  const std::size_t channels = from.channels();
  std::vector<float> line(static_cast<std::size_t>(source.width) * channels);
  const auto mixColumns = channels == 1   ? MixColumns<1>
                          : channels == 3 ? MixColumns<3>
                                          : MixColumns<4>;
  return ForEachRow(target.height, [&](int y) {
    MixRows(from, rows.mix(static_cast<std::size_t>(y)), line);
    mixColumns(line, columns, to.target(y));
    to.store(y);
  });
}

int Draw(const Pixels& source, const Pixels& target, unsigned flags) {
  const bool mixes = source.depth > 8 || modules::BytesAreTones(source);
  if (mixes && (flags & kSizeBest) != 0) {
    return DrawMixed(source, target, Resampling::Best(source.width, target.width),
                     Resampling::Best(source.height, target.height));
  }
  if (mixes && (flags & kSizeBilinear) != 0) {
    return DrawMixed(source, target, Resampling::Bilinear(source.width, target.width),
                     Resampling::Bilinear(source.height, target.height));
  }
  return DrawNearest(source, target);
}

int Resize(struct_LEAD_Bitmap* bitmap, int width, int height, unsigned flags) {
  Redrawing drawing(bitmap);
  if (!drawing.hasSource()) return kModuleNoBitmap;
  int code = drawing.begin(width, height, drawing.source().depth);
  if (code == kModuleSuccess) code = Draw(drawing.source(), drawing.target(), flags);
  return code == kModuleSuccess ? drawing.finish(*bitmap) : code;
}

}  // namespace

int L_SizeBitmap(struct_LEAD_Bitmap* bitmap, int width, int height, unsigned flags) {
  if (width <= 0 || height <= 0) return kModuleBadParameter;
  return modules::Guarded([=] { return Resize(bitmap, width, height, flags); });
}
