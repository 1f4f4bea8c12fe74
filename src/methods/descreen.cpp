// Descreen: smooths a scan of screened print. Works straight on packed DIBs of 8 and 24 bits; an
// 8-bit image is taken by its bytes, whatever its palette.
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

// The rows of a locked block: they start behind the header, whose size the header tells, and the
// palette.
std::optional<orvo::DibLayout> RowsOf(const void* block, std::size_t bytes) {
  if (block == nullptr || bytes < orvo::kDibHeaderBytes) return std::nullopt;
  const BITMAPINFOHEADER header = orvo::DibHeaderOf(block);
  const auto layout = orvo::DibLayoutFor(header.biWidth, header.biHeight, header.biBitCount,
                                         std::max<std::size_t>(header.biSize, sizeof header));
  return layout && layout->totalBytes <= bytes ? layout : std::nullopt;
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

// from and to: the locked blocks of source and result, equal in place and otherwise copies.
int FilterBlock(const std::uint8_t* from, std::uint8_t* to, std::size_t bytes, std::uint32_t level,
                StatusCallback callback) {
  if (bytes < orvo::kDibHeaderBytes) return ORVO_ERR_FAILURE;
  const int depth = orvo::DibHeaderOf(from).biBitCount;
  const bool takesDepth = depth == 8 || depth == 24;
  if (takesDepth && orvo::DibHeaderOf(from).biHeight < 1) return ORVO_OK;
  const auto layout = RowsOf(from, bytes);
  if (!layout) return ORVO_ERR_FAILURE;
  if (!takesDepth) return ORVO_ERR_BAD_DEPTH;
  return FilterRows({.source = from + layout->pixelOffset,
                     .target = to + layout->pixelOffset,
                     .stride = layout->stride,
                     .width = layout->width,
                     .height = layout->height,
                     .channels = depth / 8},
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
  const DibHandle target = *result;
  const auto* const from = static_cast<const std::uint8_t*>(GlobalLock(source));
  auto* const to = static_cast<std::uint8_t*>(GlobalLock(target));
  const int code = from != nullptr && to != nullptr
                       ? FilterBlock(from, to, GlobalSize(source), level, callback)
                       : static_cast<int>(ORVO_ERR_FAILURE);
  if (from != nullptr) GlobalUnlock(source);
  if (to != nullptr) GlobalUnlock(target);
  // A copy that could not be worked on stays in the result handle; one that was given up does not.
  const bool keep = code == ORVO_OK || code == ORVO_ERR_FAILURE;
  return keep ? code : block.takeBack(code);
}
