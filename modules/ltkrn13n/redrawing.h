// What every operation of this module shares: a bitmap's new image is drawn from its old one into a
// block of its own, row by row with progress, and takes the old one's place at the very end. So an
// operation that fails or is stopped leaves the bitmap as it was.
#ifndef MODULES_LTKRN13N_REDRAWING_H
#define MODULES_LTKRN13N_REDRAWING_H

#include <optional>
#include <utility>

#include "common/dib_image.h"
#include "common/status.h"

namespace modules {

// One operation on one bitmap, which may be null or hold nothing: then there is no source.
class Redrawing {
 public:
  explicit Redrawing(const struct_LEAD_Bitmap* bitmap) noexcept;

  [[nodiscard]] bool hasSource() const { return static_cast<bool>(*source_); }
  [[nodiscard]] const Pixels& source() const { return **source_; }
  [[nodiscard]] const LockedDib& lockedSource() const { return *source_; }

  // Makes the new image, zero-filled; it has the source's palette when it has the source's depth.
  // Module code.
  [[nodiscard]] int begin(int width, int height, int depth);
  [[nodiscard]] const Pixels& target() const { return **target_; }

  // Puts the new image into the bitmap, with the resolution of the source's record, or into
  // another one, whose own image is freed. kModuleSuccess.
  int finish(struct_LEAD_Bitmap& bitmap);

 private:
  const struct_LEAD_Bitmap* bitmap_;
  std::optional<LockedDib> source_;
  OwnedBlock block_;
  std::optional<LockedDib> target_;
};

// Runs work(y) for each row, and reports progress from the `stage`-th of `stages` equal parts.
// Module code.
template <class Work>
int ForEachRow(int height, const Work& work, Progress& progress, int stage = 0) {
  const auto rows = static_cast<std::uint64_t>(height);
  const std::uint64_t before = rows * static_cast<std::uint64_t>(stage);
  for (int y = 0; y < height; ++y) {
    if (!progress.report(before + static_cast<std::uint64_t>(y))) return kModuleAborted;
    work(y);
  }
  return progress.report(before + rows) ? kModuleSuccess : kModuleAborted;
}
template <class Work>
int ForEachRow(int height, const Work& work) {
  Progress progress(static_cast<std::uint64_t>(height));
  return ForEachRow(height, work, progress);
}

// The whole scale of an operation that finds nothing to do.
inline int ReportNothingToDo() {
  return ForEachRow(1, [](int) {});
}

}  // namespace modules

#endif  // MODULES_LTKRN13N_REDRAWING_H
