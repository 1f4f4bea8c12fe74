#include "imaging/redeye/eyes.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <optional>

#include "imaging/redeye/color_tests.h"
#include "imaging/redeye/pupil.h"

namespace orvo {

namespace {

// Everything here counts pixels from the left and top of the region's rectangle.
class EyeFinder {
 public:
  EyeFinder(const Box& rect, std::int32_t reduction, const PlaneView& planes, EyeMasks& masks);

  // The next eye in the order of rows, from where the last one was found; it is reduced in the
  // planes.
  [[nodiscard]] std::optional<Box> next();

 private:
  [[nodiscard]] bool isSkin(std::size_t x) const;
  [[nodiscard]] std::optional<std::int32_t> pupilRadius(const FilledRegion& blob) const;
  [[nodiscard]] bool hasDetail(const FilledRegion& blob, std::int32_t radius) const;
  [[nodiscard]] bool hasWhite(const FilledRegion& blob, std::int32_t radius) const;
  [[nodiscard]] Box boxRound(const FilledRegion& blob, std::int32_t reach) const;
  Box reduce(const FilledRegion& blob, std::int32_t radius);

  PlaneView planes_;
  std::int32_t width_;
  std::int32_t height_;
  std::int32_t reduction_;
  RegionMask& red_;
  std::uint8_t* white_;
  std::int32_t row_ = 1;
  std::int32_t column_ = 1;
};

void MarkColors(const PlaneView& row, std::size_t count, std::uint8_t* __restrict red,
                std::uint8_t* __restrict white) {
  for (std::size_t i = 0; i < count; ++i) {
    red[i] = ImgIsRedEyeColor(row.y[i], row.cb[i], row.cr[i]);
    white[i] = ImgIsBrightNeutral(row.y[i], row.cb[i], row.cr[i]);
  }
}

EyeFinder::EyeFinder(const Box& rect, std::int32_t reduction, const PlaneView& planes,
                     EyeMasks& masks)
    : planes_(planes),
      width_(rect.width()),
      height_(rect.height()),
      reduction_(reduction),
      red_(masks.red),
      white_(masks.white.get()) {
  red_.start(width_, height_);
  for (std::int32_t row = 1; row + 1 < height_; ++row) {
    const std::size_t at = red_.at(1, row);
    MarkColors(planes_.from(1, row), static_cast<std::size_t>(width_) - 2, &red_.foreground[at],
               &white_[at]);
  }
  ImgOpenMask(red_);
}

std::optional<Box> EyeFinder::next() {
  for (; row_ + 1 < height_; ++row_, column_ = 1) {
    for (; column_ + 1 < width_; ++column_) {
      const std::size_t at = red_.at(column_, row_);
      // A pixel of a blob that has the colour of skin starts nothing and stays unvisited.
      if (red_.foreground[at] == 0 || red_.visited[at] != 0 || isSkin(planes_.at(column_, row_))) {
        continue;
      }
      const FilledRegion blob = ImgFillRegion(column_, row_, red_);
      const auto radius = pupilRadius(blob);
      if (radius && hasDetail(blob, *radius) && hasWhite(blob, *radius)) {
        return reduce(blob, *radius);
      }
    }
  }
  return std::nullopt;
}

bool EyeFinder::isSkin(std::size_t x) const {
  return ImgIsSkinColor(planes_.y[x], planes_.cb[x], planes_.cr[x]);
}

// Nothing for a blob without the size, shape and place of a pupil.
std::optional<std::int32_t> EyeFinder::pupilRadius(const FilledRegion& blob) const {
  const Box& box = blob.box;
  const std::int64_t wide = box.right - box.left;
  const std::int64_t tall = box.bottom - box.top;
  if (blob.area <= 3) return std::nullopt;
  if (box.left < 6 || box.top < 6 || box.right >= width_ - 5 || box.bottom >= height_ - 5) {
    return std::nullopt;
  }
  if (wide * tall >= 3 * blob.area) return std::nullopt;
  if (wide >= 2 * tall || tall >= 2 * wide) return std::nullopt;
  // The rows where a face has its eyes; in a bottom-up image they count from its lower edge.
  if (blob.y <= height_ / 3 || blob.y >= std::int64_t{7} * height_ / 8) return std::nullopt;
  const auto radius = static_cast<std::int32_t>(RadiusOfArea(blob.area));
  if (radius == 0 || radius > width_ / 16 || radius < reduction_ / 2) return std::nullopt;
  return std::max(radius, 2);
}

// An eye is no flat ground: luma and chroma spread round it.
bool EyeFinder::hasDetail(const FilledRegion& blob, std::int32_t radius) const {
  const Box square = boxRound(blob, 3 * radius);
  const std::int64_t count = std::int64_t{square.width()} * square.height();
  const auto overSquare = [&](const std::uint8_t* plane, auto term) {
    std::int64_t sum = 0;
    for (std::int32_t row = square.top; row <= square.bottom; ++row) {
      const std::uint8_t* const pixels = plane + planes_.at(square.left, row);
      for (std::int32_t i = 0; i < square.width(); ++i) sum += term(pixels[i]);
    }
    return sum;
  };
  const auto spread = [&](const std::uint8_t* plane) {
    const auto mean = static_cast<int>(overSquare(plane, [](int value) { return value; }) / count);
    const std::int64_t squares =
        overSquare(plane, [mean](int value) { return (value - mean) * (value - mean); });
    // A blob lies well inside the region, so there is more than its own pixel.
    // NOLINTNEXTLINE(clang-analyzer-core.DivideZero)
    return ImgApproxSqrt(static_cast<std::int32_t>(squares / (count - 1)), 10);
  };
  return spread(planes_.y) >= 20 && spread(planes_.cb) >= 2 && spread(planes_.cr) >= 5;
}

// The white of an eye, to the left and to the right of the pupil; the mask's edge holds none.
bool EyeFinder::hasWhite(const FilledRegion& blob, std::int32_t radius) const {
  std::int32_t white = 0;
  const auto countColumns = [&](std::int32_t row, std::int32_t first, std::int32_t end) {
    for (std::int32_t column = std::max(first, 1); column < std::min(end, width_ - 1); ++column) {
      white += white_[red_.at(column, row)];
    }
  };
  for (std::int32_t row = std::max(blob.y - radius, 1);
       row <= std::min(blob.y + radius, height_ - 2); ++row) {
    countColumns(row, blob.x - 4 * radius, blob.x - radius);
    countColumns(row, blob.x + radius, blob.x + 4 * radius);
  }
  return white >= radius;
}

Box EyeFinder::boxRound(const FilledRegion& blob, std::int32_t reach) const {
  return {std::max(blob.x - reach, 0), std::max(blob.y - reach, 0),
          std::min(blob.x + reach, width_ - 1), std::min(blob.y + reach, height_ - 1)};
}

// The right column and the bottom row of the box stay as they are.
Box EyeFinder::reduce(const FilledRegion& blob, std::int32_t radius) {
  const double outer = kFeatherEnd * radius;
  const Box box = boxRound(blob, static_cast<std::int32_t>(std::floor(outer + 0.5)));
  // Where the box is cut off the disk moves with its middle.
  const std::int32_t middleX = (box.left + box.right) / 2;
  const std::int32_t middleY = (box.top + box.bottom) / 2;
  for (std::int32_t row = box.top; row < box.bottom; ++row) {
    for (std::int32_t column = box.left; column < box.right; ++column) {
      const double dx = column - middleX;
      const double dy = row - middleY;
      const double distance = ImgSqrt(dx * dx + dy * dy);
      if (distance >= outer) continue;
      const std::size_t at = planes_.at(column, row);
      const YCbCrBytes color{planes_.y[at], planes_.cb[at], planes_.cr[at]};
      const int share = red_.foreground[red_.at(column, row)] != 0 ? 0 : 1;
      const YCbCrBytes reduced =
          distance <= radius ? DarkNeutral(color) : Feathered(color, share, distance, radius);
      planes_.y[at] = reduced.y;
      planes_.cb[at] = reduced.cb;
      planes_.cr[at] = reduced.cr;
    }
  }
  return box;
}

}  // namespace

std::int32_t ImgApproxSqrt(std::int32_t v, std::int32_t g) noexcept {
  constexpr int kMostRounds = 20;
  constexpr std::int32_t kSettled = 3;
  if (v < 0) return 1;
  for (int round = 0; round < kMostRounds; ++round) {
    const std::int32_t next = (v / g + g) / 2;
    const std::int32_t moved = std::abs(g - next);
    g = next;
    if (moved < kSettled) break;
  }
  return g;
}

bool EyeMasks::allocate(std::size_t pixels) noexcept {
  white = ImgAllocArray<std::uint8_t>(pixels);
  return white != nullptr && red.allocate(pixels);
}

int ImgFindEyesInRegion(RedEyeScan& scan, const PlaneView& planes, int region,
                        EyeMasks& masks) noexcept {
  const Box& rect = scan.regionRects[region];
  EyeFinder finder(rect, scan.reduction, planes, masks);
  int count = 0;
  while (count < kMostEyes) {
    const auto eye = finder.next();
    if (!eye) break;
    scan.eyeRects[count++] = {rect.left + eye->left, rect.top + eye->top, rect.left + eye->right,
                              rect.top + eye->bottom};
  }
  return count;
}

}  // namespace orvo
