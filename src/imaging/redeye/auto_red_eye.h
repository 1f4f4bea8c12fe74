#ifndef ORVO_IMAGING_REDEYE_AUTO_RED_EYE_H
#define ORVO_IMAGING_REDEYE_AUTO_RED_EYE_H

#include <cstdint>

namespace orvo {

// Finds and reduces the red eyes of a 24-bit working image. The target differs from the source only
// where eyes were reduced.
//
// source and target are equal or apart. The difference: where skin regions overlap, an in-place
// call sees in the later one what it wrote in the earlier. kImgDone when at least one eye was
// reduced; kImgNotFound, or kImgNoMemory, with the target a copy of the source.
[[nodiscard]] int ImgAutoRedEye(const std::uint8_t* source, std::uint8_t* target,
                                std::uint32_t width, std::uint32_t height) noexcept;

}  // namespace orvo

#endif  // ORVO_IMAGING_REDEYE_AUTO_RED_EYE_H
