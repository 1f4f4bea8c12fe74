// Auto-trim: the rectangle of a page's content at one threshold.
#include <algorithm>

#include <orvo/CLeadTools.h>
#include <orvo/COrvoCS.h>
#include <orvo/result_codes.h>

#include "dib/dib_blocks.h"
#include "imaging/trim/trim_search.h"

using namespace orvo;

namespace {

// Pixels are told dark or light by brightness limits within these; a higher threshold is a lower
// limit.
constexpr int kLowestLimit = 25;
constexpr int kHighestLimit = 230;

std::uint8_t LimitFor(std::uint8_t threshold) {
  return static_cast<std::uint8_t>(std::clamp(255 - threshold, kLowestLimit, kHighestLimit));
}

// Three dark pixels for each full 72 dots per inch, 2834 pixels per metre, of the image.
std::int32_t RunLengthFor(std::int32_t pixelsPerMetre) {
  return pixelsPerMetre / 2834 * 3;
}

// A gray copy of a 1-bit page that releases itself.
class GrayCopy {
 public:
  GrayCopy() = default;
  ~GrayCopy() {
    if (handle_ != nullptr) GlobalFree(handle_);
  }
  GrayCopy(const GrayCopy&) = delete;
  GrayCopy& operator=(const GrayCopy&) = delete;

  // False when there is no memory. A conversion that fails leaves a 1-bit copy.
  [[nodiscard]] bool make(DibHandle source, CLeadTools* tools) {
    handle_ = CopyDIB(source);
    if (handle_ != nullptr && tools != nullptr) {
      tools->LTConvertToGrayScaleRes(handle_, nullptr, nullptr);
    }
    return handle_ != nullptr;
  }
  [[nodiscard]] DibHandle orElse(DibHandle other) const {
    return handle_ != nullptr ? handle_ : other;
  }

 private:
  DibHandle handle_ = nullptr;
};

}  // namespace

int COrvoCS::CSGetAutoTrimRect(DibHandle source, std::uint8_t threshold, RECT* rect) noexcept {
  if (source == nullptr) return ORVO_ERR_NULL_IMAGE;
  if (rect == nullptr) return ORVO_ERR_BAD_ARGUMENT;
  SetRect(rect, 0, 0, 1, 1);
  GrayCopy copy;
  {
    const LockedImage image(source);
    if (!image) return ORVO_ERR_FAILURE;
    if (image.layout().depth == 1 && !copy.make(source, leadTools)) return ORVO_ERR_NO_MEMORY;
  }
  const LockedImage image(copy.orElse(source));
  if (!image) return ORVO_ERR_FAILURE;
  const orvo::DibLayout& layout = image.layout();
  if (layout.depth != 8 && layout.depth != 24) return ORVO_ERR_BAD_DEPTH;
  const TrimPage page{.rows = image.pixels(),
                      .stride = layout.stride,
                      .width = layout.width,
                      .height = layout.height,
                      .channels = layout.depth / 8,
                      .run = RunLengthFor(orvo::DibHeaderOf(image.bytes()).biXPelsPerMeter)};
  MeasureContent(page, LimitFor(threshold), *rect);
  return ORVO_OK;
}
