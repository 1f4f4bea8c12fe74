#include "imaging/trim/dark_bytes.h"

namespace orvo::ORVO_LEVEL {

bool HasDarkByte(const std::uint8_t* bytes, std::size_t count, std::uint8_t limit) {
  constexpr std::size_t kBlock = 1024;
  for (std::size_t done = 0; done < count; done += kBlock) {
    const std::size_t end = Least(done + kBlock, count);
    std::uint8_t lowest = 255;
    for (std::size_t i = done; i < end; ++i) lowest = Least(lowest, bytes[i]);
    if (lowest <= limit) return true;
  }
  return false;
}

}  // namespace orvo::ORVO_LEVEL
