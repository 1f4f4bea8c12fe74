// What pixel functions return.
#ifndef ORVO_IMAGING_RESULTS_H
#define ORVO_IMAGING_RESULTS_H

namespace orvo {

enum ImagingResult : int {
  kImgDone = 0,
  kImgNotFound = 1,
  kImgUnsuitable = 2,  // the depth or another argument does not suit the function
  kImgNoMemory = 3,
};

}  // namespace orvo

#endif  // ORVO_IMAGING_RESULTS_H
