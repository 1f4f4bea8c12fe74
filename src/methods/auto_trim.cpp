// The rectangle of a page's content.
#include "methods/auto_trim.h"

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

// A gray copy of a 1-bit page; empty when there is no memory. A conversion that fails leaves a
// 1-bit copy.
OwnedDib GrayCopyOf(DibHandle page, CLeadTools* tools) {
  OwnedDib copy(CopyDIB(page));
  if (copy && tools != nullptr) {
    tools->LTConvertToGrayScaleRes(*copy.address(), nullptr, nullptr);
  }
  return copy;
}

bool HasSize(const RECT& rect) {
  return rect.right - rect.left > 1 && rect.bottom - rect.top > 1;
}

// For a page on which no threshold finds anything.
int WholeImage(DibHandle source, RECT* rect) {
  const LockedImage image(source);
  if (!image) return ORVO_ERR_FAILURE;
  SetRect(rect, 0, 0, image.layout().width, image.layout().height);
  return ORVO_OK;
}

}  // namespace

int COrvoCS::CSGetAutoTrimRect(DibHandle source, std::uint8_t threshold, RECT* rect) noexcept {
  if (source == nullptr) return ORVO_ERR_NULL_IMAGE;
  if (rect == nullptr) return ORVO_ERR_BAD_ARGUMENT;
  SetRect(rect, 0, 0, 1, 1);
  OwnedDib gray;
  {
    const LockedImage image(source);
    if (!image) return ORVO_ERR_FAILURE;
    if (image.layout().depth == 1) {
      gray = GrayCopyOf(source, leadTools);
      if (!gray) return ORVO_ERR_NO_MEMORY;
    }
  }
  const LockedImage image(gray ? gray.get() : source);
  if (!image) return ORVO_ERR_FAILURE;
  const DibLayout& layout = image.layout();
  if (layout.depth != 8 && layout.depth != 24) return ORVO_ERR_BAD_DEPTH;
  const TrimPage page{.rows = image.pixels(),
                      .stride = layout.stride,
                      .width = layout.width,
                      .height = layout.height,
                      .channels = layout.depth / 8,
                      .run = RunLengthFor(image.header().biXPelsPerMeter)};
  MeasureContent(page, LimitFor(threshold), *rect);
  return ORVO_OK;
}

int orvo::FindAutoTrimRect(COrvoCS& toolkit, DibHandle source, std::uint8_t threshold,
                           RECT* rect) noexcept {
  const int first = threshold;
  int at = first;
  int step = 10;
  int best = 0;
  bool raised = false;
  bool lowered = false;
  const auto measure = [&](int value) {
    return toolkit.CSGetAutoTrimRect(source, static_cast<std::uint8_t>(value), rect);
  };
  for (;;) {
    if (const int code = measure(at); code != ORVO_OK) return code;
    const bool found = HasSize(*rect);
    if (found && at == first) return ORVO_OK;
    if (found) best = at;
    // The step is halved each time the search turns round.
    if (found ? lowered : raised) step /= 2;
    if (step == 0) return found ? static_cast<int>(ORVO_OK) : measure(best);
    at += found ? step : -step;
    if (at < 0) return WholeImage(source, rect);
    raised = found;
    lowered = !found;
  }
}
