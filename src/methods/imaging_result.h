#ifndef ORVO_METHODS_IMAGING_RESULT_H
#define ORVO_METHODS_IMAGING_RESULT_H

namespace orvo {

// The toolkit's result code for the result of a pixel function.
[[nodiscard]] int MapImagingLibResult(int imagingResult) noexcept;

}  // namespace orvo

#endif  // ORVO_METHODS_IMAGING_RESULT_H
