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

// One operation on one bitmap.
class Redrawing {
 public:
  // Refuses a bitmap that is null or holds nothing. While a callback may run, which could free any
  // block, no image is lent.
  explicit Redrawing(struct_LEAD_Bitmap* bitmap);

  [[nodiscard]] const Pixels& source() const { return **source_; }

  // Makes the new image, zero-filled; it has the source's palette when it has the source's depth.
  void begin(int width, int height, int depth);
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

// The whole scale of an operation that finds nothing to do.
inline int ReportNothingToDo() {
  ForEachRow(1, [](int) {});
  return kModuleSuccess;
}

}  // namespace modules

#endif  // MODULES_LTKRN13N_REDRAWING_H
