// The table's entries for red-eye.
#include <orvo/COrvoCS.h>
#include <orvo/instance.h>

using namespace orvo;

int COrvoInstance::SearchRedEyeRegion(DibHandle source, std::uint32_t x, std::uint32_t y,
                                      std::uint32_t* foundX, std::uint32_t* foundY,
                                      std::uint32_t* foundRadius) noexcept {
  return orvoCS->CSSearchRedEyeRegion(source, x, y, foundX, foundY, foundRadius);
}

int COrvoInstance::ReduceRedEye(DibHandle source, DibHandle* result, std::uint32_t x,
                                std::uint32_t y, std::uint32_t radius) noexcept {
  return orvoCS->CSReduceRedEye(source, result, x, y, radius);
}

int COrvoInstance::ReduceRedEyeInPlace(DibHandle source, std::uint32_t x, std::uint32_t y,
                                       std::uint32_t radius) noexcept {
  return orvoCS->CSReduceRedEye(source, &source, x, y, radius);
}

int COrvoInstance::AutoRedEyeInPlace(DibHandle source, int* found) noexcept {
  return orvoCS->CSAutoRedEye(source, &source, found);
}

int COrvoInstance::AutoRedEye(DibHandle source, DibHandle* result, int* found) noexcept {
  if (result == nullptr || found == nullptr) return ORVO_ERR_BAD_ARGUMENT;
  const int code = orvoCS->CSAutoRedEye(source, result, found);
  if (*found != 0) return code;
  // Nothing was corrected: the caller gets no second image of the same picture.
  if (*result != nullptr && *result != source) GlobalFree(*result);
  *result = nullptr;
  return code;
}
