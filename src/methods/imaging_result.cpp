#include "methods/imaging_result.h"

#include <orvo/result_codes.h>

#include "imaging/results.h"

namespace orvo {

int MapImagingLibResult(int imagingResult) noexcept {
  switch (imagingResult) {
    case kImgDone:
      return ORVO_OK;
    case kImgUnsuitable:
      return ORVO_ERR_BAD_ARGUMENT;
    case kImgNoMemory:
      return ORVO_ERR_NO_MEMORY;
    default:
      return ORVO_ERR_FAILURE;
  }
}

}  // namespace orvo
