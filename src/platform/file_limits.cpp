#include <orvo/file_limits.h>

extern "C" const OrvoFileLimits* OrvoLimitFiles(const OrvoFileLimits* limits) {
  static OrvoFileLimits held{.side = 1'000'000,
                             .pixels = uint64_t{1} << 32,
                             .memory = uint64_t{1} << 32,
                             .scans = 100,
                             .pieces = 1000,
                             .pages = 65535};
  if (limits != nullptr) held = *limits;
  return &held;
}
