#ifndef ORVO_IMAGING_ADJUST_EXPOSURE_H
#define ORVO_IMAGING_ADJUST_EXPOSURE_H

#include <cstdint>

namespace orvo {

// Equalises tones locally: each tile of 16x16 pixels moves toward the equalising curve of the
// window of 128x128 pixels round it, by a share that grows with the level (0..10) and with the
// variety of tones in the tile. Colours are changed by luma. Two rows and columns at each border
// keep the source's bytes.
//
// source and target: rows of a working image of this depth (8 or 24 bits), equal in an in-place
// call and otherwise apart. At 8 bits an in-place call differs from a call into another buffer: its
// windows hold tones that earlier rows of tiles have already changed.
//
// kImgUnsuitable for another depth, with nothing written. With the target an exact copy of the
// source: kImgNotFound when a side is below 128, kImgNoMemory.
[[nodiscard]] int ImgExposureAdjust(const std::uint8_t* source, std::uint8_t* target,
                                    std::uint32_t width, std::uint32_t height, std::uint8_t depth,
                                    std::uint8_t level) noexcept;

}  // namespace orvo

#endif  // ORVO_IMAGING_ADJUST_EXPOSURE_H
