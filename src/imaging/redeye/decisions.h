// Which of a region's candidate eyes are believed.
#ifndef ORVO_IMAGING_REDEYE_DECISIONS_H
#define ORVO_IMAGING_REDEYE_DECISIONS_H

#include "imaging/redeye/red_eye_scan.h"

namespace orvo {

// True for two eyes side by side of which neither is twice as wide as the other.
[[nodiscard]] bool ImgIsEyePair(const RedEyeScan& scan, int i, int j) noexcept;

// Of three or four candidates those that form pairs, two pairs at most, move to the front; gives
// their number.
int ImgKeepEyePairs(RedEyeScan& scan, int count) noexcept;

// Candidates inside the region's outline, in the part of it where eyes are, move to the front in
// their order; gives their number. None in a region without the shape of a face.
int ImgCheckEyesInOutline(RedEyeScan& scan, int region, int count) noexcept;

// Two that form a pair are believed at once; of three or four those in pairs; any other must lie
// inside the outline. Gives the number kept, at the front of eyeRects.
int KeepBelievableEyes(RedEyeScan& scan, int region, int count) noexcept;

}  // namespace orvo

#endif  // ORVO_IMAGING_REDEYE_DECISIONS_H
