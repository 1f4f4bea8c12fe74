// Coded pictures in memory by the JPEG library: their coefficients read, exchanged and written, and
// pixels coded in a file's own manner. What the library refuses is thrown as NotPossible.
#ifndef APPS_ORVO_JPEG_JPEG_CODING_H
#define APPS_ORVO_JPEG_JPEG_CODING_H

#include "common/dib_image.h"
#include "jpeg_file.h"
#include "jpeg_source.h"
#include "pictures/jpeg_session.h"

namespace client {

// A coded picture. The stream outlives it.
class JpegInput {
 public:
  // Reads the header.
  explicit JpegInput(std::span<const std::uint8_t> stream);

  [[nodiscard]] const jpeg_decompress_struct& codec() const { return codec_; }
  [[nodiscard]] JpegManner manner() const;

  // To be called before the two below. Tables that change between scans are not possible.
  void readCoefficients();
  // A row of a component's blocks, to be read or changed.
  JBLOCKROW blocks(int component, JDIMENSION row);
  // The picture coded anew from its coefficients; of the manner, the tables and factors are those
  // of the picture.
  Bytes written(const JpegManner& manner);

 private:
  struct Codec : jpeg_decompress_struct {
    ~Codec() { jpeg_destroy_decompress(this); }
  };
  j_common_ptr common() { return reinterpret_cast<j_common_ptr>(&codec_); }

  modules::JpegSession session_{nullptr};
  Codec codec_{};
  jvirt_barray_ptr* coefficients_ = nullptr;
};

// Codes a part of a picture, in pixels from the top left, right and bottom exclusive. 8-bit grays
// are coded in tones, 24 bits in colours; other depths are not possible.
Bytes Encoded(const JpegManner& manner, const modules::LockedDib& picture, const RECT& part);

}  // namespace client

#endif  // APPS_ORVO_JPEG_JPEG_CODING_H
