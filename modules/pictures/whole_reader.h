// What readers share whose libraries take a whole file and give a whole picture.
#ifndef MODULES_PICTURES_WHOLE_READER_H
#define MODULES_PICTURES_WHOLE_READER_H

#include <utility>

#include "pictures/file_handle.h"
#include "pictures/picture.h"

namespace modules {

class WholeReader : public PictureReader {
 public:
  using PictureReader::PictureReader;

  void readRow(std::uint8_t* row) final {
    const std::size_t bytes = picture_.rowBytes();
    std::copy_n(&pixels_[nextRow_++ * bytes], bytes, row);
    if (redFirst_) {
      for (std::size_t at = 0; at < bytes; at += sampleCount()) std::swap(row[at], row[at + 2]);
    }
    endStep();
  }

 protected:
  // Colours of 8 bits each, with or without opacity.
  void describe(int width, int height, bool hasAlpha) {
    Require(width > 0 && height > 0, kFileFormatDamaged);
    picture_ = Picture{.width = width, .height = height, .compression = picture_.compression};
    picture_.setDepth(hasAlpha ? 32 : 24);
    picture_.hasAlpha = hasAlpha;
  }

  // Room for the pixels, transparent ones. Their part of the progress follows that of the steps
  // that decoding takes.
  void makeRoom(std::uint64_t steps) {
    const auto height = static_cast<std::uint64_t>(picture_.height);
    RequireMemory(picture_.rowBytes() * height);
    expectSteps(steps + height);
    pixels_.resize(picture_.rowBytes() * static_cast<std::size_t>(height));
  }

  [[nodiscard]] std::size_t sampleCount() const {
    return static_cast<std::size_t>(picture_.samples);
  }

  std::vector<std::uint8_t> file_;
  std::vector<std::uint8_t> pixels_;
  bool redFirst_ = false;  // the pixels begin with red

 private:
  std::size_t nextRow_ = 0;
};

}  // namespace modules

#endif  // MODULES_PICTURES_WHOLE_READER_H
