#include "imaging/trim/trim_search.h"

#include "imaging/trim/dark_bytes.h"

namespace orvo {

namespace {

// The part of a gray page that is looked at: scanners leave a dark line at the edge of gray scans.
std::int32_t MarginOf(const TrimPage& page) {
  if (page.channels != 1) return 0;
  const std::int32_t margin = page.width < 10 ? 1 : 10;
  return margin > page.height ? margin / 10 : margin;
}

class Measurement {
 public:
  Measurement(const TrimPage& page, std::uint8_t limit)
      : page_(page), limit_(limit), margin_(MarginOf(page)) {}

  void run(RECT& rect) const {
    findTop(rect);
    findBottom(rect);
    findLeft(rect);
    findRight(rect);
  }

 private:
  [[nodiscard]] const std::uint8_t* pixel(std::int32_t x, std::int32_t y) const {
    return page_.rows + page_.stride * static_cast<std::size_t>(y) +
           static_cast<std::size_t>(x) * static_cast<std::size_t>(page_.channels);
  }
  [[nodiscard]] bool isDark(const std::uint8_t* pixel) const {
    if (page_.channels == 1) return *pixel <= limit_;
    return pixel[0] <= limit_ || pixel[1] <= limit_ || pixel[2] <= limit_;
  }

  // Whether `count` pixels, `step` bytes apart, hold a run of dark ones.
  [[nodiscard]] bool hasRun(const std::uint8_t* first, std::size_t step, std::int32_t count) const {
    std::int32_t run = 0;
    for (std::int32_t i = 0; i < count; ++i, first += step) {
      run = isDark(first) ? run + 1 : 0;
      if (run > 0 && run >= page_.run) return true;
    }
    return false;
  }
  [[nodiscard]] bool rowHasRun(std::int32_t y) const {
    const std::int32_t count = page_.width - 2 * margin_;
    if (count <= 0) return false;
    const std::uint8_t* const first = pixel(margin_, y);
    const auto channels = static_cast<std::size_t>(page_.channels);
    // Most lines of a margin are told by this one quick pass.
    return ORVO_BEST(HasDarkByte)(first, static_cast<std::size_t>(count) * channels, limit_) &&
           hasRun(first, channels, count);
  }
  [[nodiscard]] bool columnHasRun(std::int32_t x, const RECT& rect) const {
    const std::int32_t count = rect.bottom - rect.top;
    return count > 0 && hasRun(pixel(x, rect.top), page_.stride, count);
  }

  // The side is moved out by the length of a run, all or nothing.
  [[nodiscard]] std::int32_t movedDown(std::int32_t at) const {
    return at >= page_.run ? at - page_.run : at;
  }
  [[nodiscard]] std::int32_t movedUp(std::int32_t at, std::int32_t size) const {
    return at < size - page_.run ? at + page_.run : at;
  }

  void findTop(RECT& rect) const {
    for (std::int32_t y = margin_; y < page_.height - margin_; ++y) {
      if (!rowHasRun(y)) continue;
      rect.top = movedDown(y);
      return;
    }
  }
  void findBottom(RECT& rect) const {
    for (std::int32_t y = page_.height - margin_ - 1; y > rect.top; --y) {
      if (!rowHasRun(y)) continue;
      rect.bottom = movedUp(y, page_.height);
      return;
    }
  }
  void findLeft(RECT& rect) const {
    for (std::int32_t x = margin_; x < page_.width - margin_; ++x) {
      if (!columnHasRun(x, rect)) continue;
      rect.left = movedDown(x);
      return;
    }
  }
  void findRight(RECT& rect) const {
    for (std::int32_t x = page_.width - margin_ - 1; x > rect.left; --x) {
      if (!columnHasRun(x, rect)) continue;
      rect.right = movedUp(x, page_.width);
      return;
    }
  }

  const TrimPage& page_;
  std::uint8_t limit_;
  std::int32_t margin_;
};

}  // namespace

void MeasureContent(const TrimPage& page, std::uint8_t limit, RECT& rect) noexcept {
  Measurement(page, limit).run(rect);
}

}  // namespace orvo
