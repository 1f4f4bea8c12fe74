// Further pictures of a JPEG file: phones and stereo cameras put them behind the first one, with an
// index (the multi-picture format) in a segment of the first.
#ifndef APPS_ORVO_JPEG_JPEG_FURTHER_H
#define APPS_ORVO_JPEG_JPEG_FURTHER_H

#include <cstddef>
#include <cstdint>
#include <span>

namespace client {

// In bytes from the start of the file.
struct FurtherPlaces {
  std::size_t index;  // the block of tags that the index is
  std::size_t end;    // behind the first picture
};

// Tells the index in place that the first picture was exchanged: it says how long that one is, and
// counts from itself to the others.
void MoveFurtherPictures(std::span<std::uint8_t> index, const FurtherPlaces& before,
                         const FurtherPlaces& after);

}  // namespace client

#endif  // APPS_ORVO_JPEG_JPEG_FURTHER_H
