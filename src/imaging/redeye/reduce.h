#ifndef ORVO_IMAGING_REDEYE_REDUCE_H
#define ORVO_IMAGING_REDEYE_REDUCE_H

#include "imaging/redeye/search.h"

namespace orvo {

// Copies a 24-bit working image and makes the pupil dark and neutral, with a feathered edge, inside
// the largest square round its centre that the image and five quarters of the radius allow. All
// pixels of that square pass through byte form. A centre outside the image changes nothing.
//
// source and target are equal or apart, with the same result. Always kImgDone.
int ImgReduceRedEye(const std::uint8_t* source, std::uint8_t* target, std::uint32_t width,
                    std::uint32_t height, const PupilCircle& pupil) noexcept;

}  // namespace orvo

#endif  // ORVO_IMAGING_REDEYE_REDUCE_H
