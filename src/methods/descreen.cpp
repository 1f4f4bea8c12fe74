// Descreen: smooths a scan of screened print. Works straight on packed DIBs of 8 and 24 bits; an
// 8-bit image is taken by its bytes, whatever its palette.
#include "methods/descreen.h"

#include <algorithm>
#include <cmath>

#include <orvo/COrvoCS.h>
#include <orvo/result_codes.h>

#include "dib/result_block.h"
#include "imaging/descreen/descreen_filter.h"

using namespace orvo;

namespace {

// Result of a callback that asks to stop.
constexpr int kStop = ORVO_ERR_CANCELLED;

// Reports percentages that rise from row to row.
class RowProgress {
 public:
  RowProgress(StatusCallback callback, int height) : callback_(callback), height_(height) {}

  // At the start of a row; false when the callback asks to stop.
  [[nodiscard]] bool reach(int row) {
    if (callback_ == nullptr) return true;
    const int percent = static_cast<int>(std::ceil(row * 100.0 / height_));
    if (percent <= last_) return true;
    last_ = percent;
    return callback_(percent, nullptr) != kStop;
  }

 private:
  StatusCallback callback_;
  int height_;
  int last_ = -1;
};

// The rows start behind the palette, and that behind as many bytes as the header gives itself.
std::size_t HeaderBytesTold(const BITMAPINFOHEADER& header) {
  return std::max<std::size_t>(header.biSize, kDibHeaderBytes);
}

int FilterRows(const DescreenImage& image, std::uint32_t level, StatusCallback callback) {
  DescreenFilter filter(image, level);
  if (!filter.allocate()) return ORVO_ERR_NO_MEMORY;
  RowProgress progress(callback, image.height);
  for (int y = 0; y < image.height; ++y) {
    if (!progress.reach(y)) return ORVO_ERR_CANCELLED;
    filter.filterRow(y);
  }
  return ORVO_OK;
}

// source and target: one block in place, otherwise copies.
int FilterBlock(DibHandle source, DibHandle target, std::uint32_t level, StatusCallback callback) {
  const LockedImage from(source, {.headerBytes = HeaderBytesTold});
  const BlockLock to(target);
  if (from.bytes() == nullptr || from.size() < kDibHeaderBytes || !to) return ORVO_ERR_FAILURE;
  const BITMAPINFOHEADER header = from.header();
  const bool takesDepth = header.biBitCount == 8 || header.biBitCount == 24;
  if (takesDepth && header.biHeight < 1) return ORVO_OK;
  if (!from) return ORVO_ERR_FAILURE;
  if (!takesDepth) return ORVO_ERR_BAD_DEPTH;
  const DibLayout& layout = from.layout();
  return FilterRows({.source = from.pixels(),
                     .target = to.bytes() + layout.pixelOffset,
                     .stride = layout.stride,
                     .width = layout.width,
                     .height = layout.height,
                     .channels = layout.depth / 8},
                    level, callback);
}

}  // namespace

int COrvoCS::CSDescreen(DibHandle source, DibHandle* result, std::uint32_t level,
                        StatusCallback callback) noexcept {
  if (result == nullptr) return ORVO_ERR_BAD_ARGUMENT;
  if (source == nullptr) {
    *result = nullptr;
    return ORVO_ERR_NULL_IMAGE;
  }
  if (level > kMostDescreenLevel) {
    *result = source;
    return ORVO_ERR_OUT_OF_RANGE;
  }
  ResultBlock block(source, result);
  if (!block.copySource()) {
    *result = nullptr;
    return ORVO_ERR_NO_MEMORY;
  }
  const int code = FilterBlock(source, *result, level, callback);
  // A copy that could not be worked on stays in the result handle; one that was given up does not.
  const bool keep = code == ORVO_OK || code == ORVO_ERR_FAILURE;
  return keep ? code : block.takeBack(code);
}

int orvo::SharpenChange(std::uint32_t amount) noexcept {
  constexpr std::uint32_t kChangePerAmount = 10;
  constexpr std::uint32_t kFarBeyond = 1000000;
  return static_cast<int>(std::min(amount, kFarBeyond) * kChangePerAmount);
}

void orvo::MoveImage(DibHandle target, DibHandle image) noexcept {
  const OwnedDib owned(image);
  TakeImage(target, image);
}
