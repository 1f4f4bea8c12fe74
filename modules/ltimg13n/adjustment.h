// What every adjustment shares: the lock on the bitmap's image, progress, and the promise that a
// bitmap whose adjustment fails or is stopped holds its image as it was.
#ifndef MODULES_LTIMG13N_ADJUSTMENT_H
#define MODULES_LTIMG13N_ADJUSTMENT_H

#include <functional>
#include <optional>

#include "common/color.h"
#include "common/dib_image.h"

namespace modules {

// Changes the pixels of row y of `target`, which holds that row as it was, by what `source` holds.
// The two may be one image: rows come in order, and those of `source` from y on are still the
// original ones. Does not throw.
using RowChange = std::function<void(const Pixels& source, const Pixels& target, int y)>;
using ColorChange = std::function<Color(Color)>;

// One adjustment of one bitmap, which may be null or hold nothing.
class Adjustment {
 public:
  explicit Adjustment(struct_LEAD_Bitmap* bitmap) noexcept;

  // Why the bitmap cannot be adjusted; kModuleSuccess when it can.
  [[nodiscard]] int obstacle() const;
  [[nodiscard]] const Pixels& image() const { return **image_; }

  // Each changes the bitmap and ends the adjustment; module code. Rows are changed in a new block
  // when the image is lent or a status callback could stop the operation, else in the block itself.
  int changeRows(const RowChange& change);
  int changePalette(const ColorChange& change);

 private:
  struct_LEAD_Bitmap* bitmap_;
  bool hasMemory_ = true;
  std::optional<LockedDib> image_;
};

}  // namespace modules

#endif  // MODULES_LTIMG13N_ADJUSTMENT_H
