// The rows of a TIFF page from the top, whatever parts they are stored in.
#ifndef MODULES_PICTURES_TIFF_BANDS_H
#define MODULES_PICTURES_TIFF_BANDS_H

#include "pictures/tiff_rows.h"

namespace modules {

// Keeps one band of the page at a time: a strip, or the tiles side by side.
class TiffBands {
 public:
  // Refuses a page whose bands the file is too short to hold.
  TiffBands(TIFF* tiff, const TiffPage& page, std::uint64_t fileBytes);

  void readRow(std::uint8_t* row);

 private:
  void measure();
  void checkSize(std::uint64_t fileBytes) const;
  void readBand();
  void readBandByLibrary();
  void decode(std::uint32_t left, std::uint8_t* target);
  void storeRow(std::uint32_t y, std::uint8_t* row);

  TIFF* tiff_;
  const TiffPage& page_;
  TiffRows rows_;
  std::uint32_t width_;
  std::uint32_t height_;
  bool byLibrary_;

  std::uint32_t next_ = 0;          // row of the page that readRow gives
  std::uint32_t bandTop_ = 0;       // first row of the band at hand
  std::uint32_t bandRows_ = 0;      // rows at hand
  std::vector<std::uint8_t> band_;  // its decoded parts from left to right, each with all planes

  bool tiled_ = false;
  std::uint32_t partWidth_ = 0;
  std::uint32_t partHeight_ = 0;
  std::size_t partBytes_ = 0;     // decoded, of one plane
  std::size_t partRowBytes_ = 0;  // of a row of a part
  std::size_t parts_ = 0;         // of a band
  std::size_t planes_;
  std::vector<const std::uint8_t*> planeRows_;  // where the row at work begins in each plane
};

}  // namespace modules

#endif  // MODULES_PICTURES_TIFF_BANDS_H
