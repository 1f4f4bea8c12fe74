// Places of the table whose operations this version does not have yet. They refuse every call and
// touch nothing.
#include <orvo/instance.h>

int COrvoInstance::SearchRedEyeRegion(DibHandle, std::uint32_t, std::uint32_t, std::uint32_t*,
                                      std::uint32_t*, std::uint32_t*) noexcept {
  return ORVO_ERR_NOT_SUPPORTED;
}

int COrvoInstance::ReduceRedEye(DibHandle, DibHandle*, std::uint32_t, std::uint32_t,
                                std::uint32_t) noexcept {
  return ORVO_ERR_NOT_SUPPORTED;
}

int COrvoInstance::ReduceRedEyeInPlace(DibHandle, std::uint32_t, std::uint32_t,
                                       std::uint32_t) noexcept {
  return ORVO_ERR_NOT_SUPPORTED;
}

int COrvoInstance::AutoRedEyeInPlace(DibHandle, int*) noexcept {
  return ORVO_ERR_NOT_SUPPORTED;
}

int COrvoInstance::AutoRedEye(DibHandle, DibHandle*, int*) noexcept {
  return ORVO_ERR_NOT_SUPPORTED;
}
