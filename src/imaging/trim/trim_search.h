// The rectangle of a page's dark content, measured on plain rows.
#ifndef ORVO_IMAGING_TRIM_TRIM_SEARCH_H
#define ORVO_IMAGING_TRIM_TRIM_SEARCH_H

#include <cstddef>
#include <cstdint>

#include <orvo/platform.h>

namespace orvo {

struct TrimPage {
  const std::uint8_t* rows;
  std::size_t stride;
  std::int32_t width;     // pixels
  std::int32_t height;    // rows
  std::int32_t channels;  // bytes a pixel: 1 for tones, 3 for colours
  std::int32_t run;       // dark pixels in a row that make content; 0 and 1 both mean one
};

// Walks from each side to the first line with a run of dark pixels: top, bottom, left, right, each
// within what the walks before it found. A walk that finds nothing leaves its side of the rectangle
// as it was. A pixel is dark when any of its bytes is not above `limit`.
void MeasureContent(const TrimPage& page, std::uint8_t limit, RECT& rect) noexcept;

}  // namespace orvo

#endif  // ORVO_IMAGING_TRIM_TRIM_SEARCH_H
