// A page's block as the region finder reads it. Alone among the readers of blocks it minds the
// compression, bit fields and the size that the header gives itself.
#ifndef ORVO_METHODS_PAGE_IMAGE_H
#define ORVO_METHODS_PAGE_IMAGE_H

#include <cstddef>
#include <cstdint>
#include <optional>

#include <orvo/dib.h>

#include "imaging/regions/region_finder.h"
#include "imaging/regions/source_image.h"

namespace orvo {

// The image in a locked block of `bytes` bytes; nothing when the block is null or malformed, or its
// rows are compressed.
[[nodiscard]] std::optional<SourceImage> DescribeImage(const std::uint8_t* block,
                                                       std::size_t bytes);

// Shows the page to the finder. A block that cannot be locked or described leaves it an empty page.
// Throws std::bad_alloc.
void CapturePage(DibHandle page, RegionFinder& finder);

}  // namespace orvo

#endif  // ORVO_METHODS_PAGE_IMAGE_H
