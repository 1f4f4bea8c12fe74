// Rows of an image combined into one, for every kind of pixel: in each column the bitwise AND of
// the colours that stand there.
#ifndef ORVO_IMAGING_REGIONS_ROW_COMBINER_H
#define ORVO_IMAGING_REGIONS_ROW_COMBINER_H

#include <memory>
#include <vector>

#include "imaging/regions/source_image.h"

namespace orvo {

class RowCombiner {
 public:
  RowCombiner(std::size_t pixelBytes, const ChannelMasks& masks)
      : pixelBytes_(pixelBytes), masks_(masks) {}
  virtual ~RowCombiner() = default;
  RowCombiner(const RowCombiner&) = delete;
  RowCombiner& operator=(const RowCombiner&) = delete;

  // Forgets all rows; then at least one is added before the colours are taken.
  virtual void start() = 0;
  virtual void add(const std::uint8_t* row) = 0;
  // One pixel of pixelBytes() for each column, without padding.
  virtual void take(std::uint8_t* colors) const = 0;

  // How the pixels of the combined row are read, whatever those of the image are.
  [[nodiscard]] std::size_t pixelBytes() const { return pixelBytes_; }
  [[nodiscard]] const ChannelMasks& masks() const { return masks_; }

 private:
  std::size_t pixelBytes_;
  ChannelMasks masks_;
};

[[nodiscard]] std::unique_ptr<RowCombiner> CombinerFor(const SourceImage& image);

}  // namespace orvo

#endif  // ORVO_IMAGING_REGIONS_ROW_COMBINER_H
