// Where the bytes of blocks come from.
#ifndef ORVO_PLATFORM_MEMORY_H
#define ORVO_PLATFORM_MEMORY_H

#include <cstddef>

namespace platform {

// Memory for a block, null when there is none. Large blocks are images, which are about to be
// filled from end to end: they come as pages of their own, large ones where the system has them,
// since the first touch of each small page would cost more than most work on the pixels.
[[nodiscard]] void* TakeMemory(std::size_t bytes, bool zeroed) noexcept;
// Gives memory of TakeMemory back; bytes as they were asked for.
void GiveMemory(void* memory, std::size_t bytes) noexcept;

}  // namespace platform

#endif  // ORVO_PLATFORM_MEMORY_H
