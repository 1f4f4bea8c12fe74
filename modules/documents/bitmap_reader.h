// A bitmap as a picture to read, for what takes pictures out of files.
#ifndef MODULES_DOCUMENTS_BITMAP_READER_H
#define MODULES_DOCUMENTS_BITMAP_READER_H

#include "common/dib_image.h"
#include "pictures/picture.h"

namespace modules {

class BitmapReader : public PictureReader {
 public:
  // Throws when the handle holds no bitmap that can be used.
  explicit BitmapReader(DibHandle bitmap);

  bool readHeader(int page) override { return page == 1; }
  void start() override { nextRow_ = image_->height; }
  // From the top.
  void readRow(std::uint8_t* row) override;

 private:
  void takePalette();

  LockedDib image_;
  int nextRow_ = 0;  // as stored, plus one
};

}  // namespace modules

#endif  // MODULES_DOCUMENTS_BITMAP_READER_H
