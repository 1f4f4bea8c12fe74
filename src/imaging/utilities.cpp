#include "imaging/utilities.h"

#include <cmath>
#include <cstring>

#include <orvo/platform.h>

namespace orvo {

void* ImgAlloc(std::size_t bytes) noexcept {
  return LocalAlloc(LMEM_ZEROINIT, bytes);
}

void ImgFree(void* memory) noexcept {
  if (memory != nullptr) LocalFree(memory);
}

std::uint8_t* ImgCopy(std::uint8_t* target, const std::uint8_t* source,
                      std::size_t bytes) noexcept {
  if (target != source && bytes > 0) std::memcpy(target, source, bytes);
  return target;
}

std::uint8_t* ImgFill(std::uint8_t* target, std::uint8_t value, std::size_t bytes) noexcept {
  if (bytes > 0) std::memset(target, value, bytes);
  return target;
}

double ImgSqrt(double value) noexcept {
  return std::sqrt(value);
}

double ImgAtan2(double y, double x) noexcept {
  return std::atan2(y, x);
}

}  // namespace orvo
