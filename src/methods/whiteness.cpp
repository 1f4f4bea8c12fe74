// Whiteness: what is nearly white becomes white, in the palette or in the pixels.
#include <orvo/COrvoCS.h>
#include <orvo/result_codes.h>

#include "dib/result_block.h"

using namespace orvo;

namespace {

constexpr std::uint32_t kMostThreshold = 255;
constexpr std::size_t kPaletteEntries = 256;

// color: blue, green, red.
void Whiten(std::uint8_t* color, std::uint32_t threshold) {
  if (color[0] >= threshold && color[1] >= threshold && color[2] >= threshold) {
    color[0] = color[1] = color[2] = 255;
  }
}

int WhitenImage(const LockedImage& image, std::uint32_t threshold) {
  const orvo::DibLayout& layout = image.layout();
  switch (layout.depth) {
    case 8:
      for (std::size_t i = 0; i < kPaletteEntries; ++i) {
        Whiten(image.bytes() + orvo::kDibHeaderBytes + i * sizeof(RGBQUAD), threshold);
      }
      return ORVO_OK;
    case 24:
      for (int y = 0; y < layout.height; ++y) {
        std::uint8_t* pixel = image.row(y);
        for (int x = 0; x < layout.width; ++x, pixel += 3) Whiten(pixel, threshold);
      }
      return ORVO_OK;
    default:
      return ORVO_ERR_BAD_DEPTH;
  }
}

}  // namespace

int COrvoCS::CSWhitenessAdjust(DibHandle source, DibHandle* result,
                               std::uint32_t threshold) noexcept {
  if (result == nullptr) return ORVO_ERR_BAD_ARGUMENT;
  if (source == nullptr) {
    *result = nullptr;
    return ORVO_ERR_NULL_IMAGE;
  }
  if (threshold > kMostThreshold) {
    *result = source;
    return ORVO_ERR_OUT_OF_RANGE;
  }
  ResultBlock block(source, result);
  if (!block.copySource()) return ORVO_ERR_NO_MEMORY;
  int code = ORVO_ERR_FAILURE;
  if (const LockedImage image(*result); image) code = WhitenImage(image, threshold);
  return code == ORVO_OK ? code : block.takeBack(code);
}
