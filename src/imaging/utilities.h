// Working memory and small calls of the pixel functions.
#ifndef ORVO_IMAGING_UTILITIES_H
#define ORVO_IMAGING_UTILITIES_H

#include <cstddef>
#include <cstdint>
#include <memory>

namespace orvo {

// A zero-filled block; null when out of memory.
[[nodiscard]] void* ImgAlloc(std::size_t bytes) noexcept;
// Releases a block of ImgAlloc.
void ImgFree(void* memory) noexcept;

// Copies forward; target and source are equal or do not overlap. Gives the target.
std::uint8_t* ImgCopy(std::uint8_t* target, const std::uint8_t* source, std::size_t bytes) noexcept;
std::uint8_t* ImgFill(std::uint8_t* target, std::uint8_t value, std::size_t bytes) noexcept;

[[nodiscard]] double ImgSqrt(double value) noexcept;
// Angle of the point (x, y) in radians.
[[nodiscard]] double ImgAtan2(double y, double x) noexcept;

struct ImgDeleter {
  void operator()(void* memory) const noexcept { ImgFree(memory); }
};

// An array from ImgAlloc that releases itself; empty when out of memory.
template <class T>
using ImgArray = std::unique_ptr<T[], ImgDeleter>;

template <class T>
[[nodiscard]] ImgArray<T> ImgAllocArray(std::size_t count) noexcept {
  return ImgArray<T>(static_cast<T*>(ImgAlloc(count * sizeof(T))));
}

}  // namespace orvo

#endif  // ORVO_IMAGING_UTILITIES_H
