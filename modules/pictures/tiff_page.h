// A page of a TIFF file: what its tags say about the samples, and what image it becomes.
#ifndef MODULES_PICTURES_TIFF_PAGE_H
#define MODULES_PICTURES_TIFF_PAGE_H

#include <tiffio.h>

#include <cstdint>
#include <memory>

#include "pictures/picture.h"

namespace modules {

struct TiffCloser {
  void operator()(TIFF* tiff) const { TIFFClose(tiff); }
};
using TiffHandle = std::unique_ptr<TIFF, TiffCloser>;

// Opens with the library silent and no single allocation above a gibibyte; never mapped, since a
// file that shrinks under a mapping kills the process. `faults` stays valid as long as the file and
// counts the errors that the library meets; `lostPalette`, if any, becomes true when a palette lies
// behind the end of the file, which the library then takes for a gray picture. Null when it cannot
// be opened.
TiffHandle OpenTiffFile(const char* path, const char* mode, int& faults,
                        bool* lostPalette = nullptr);

struct TiffPage {
  // How samples become pixels; more samples than are asked for are left out.
  enum class Kind {
    kAsStored,  // rows of 1, 2, 4 or 8 bits: indexes, and gray below 8 bits
    kIndex,     // of 1, 2, 4 or 8 bits, with more samples
    kGray,
    kRgb,
    kLab,
    kCmyk,
    kByLibrary,  // anything else: the library's own conversion, to red, green, blue and alpha
  };

  Picture picture;  // palette left out
  Kind kind = Kind::kByLibrary;
  int bits = 0;             // of a sample in the file, 1 to 16; 32 and 64 too
  int samples = 0;          // of a pixel in the file
  std::size_t alphaAt = 0;  // which sample is opacity; 0 for none
  bool planar = false;      // a plane for each sample
  bool whiteIsZero = false;
  bool premultiplied = false;  // colours are multiplied by the alpha
  bool hasPalette = false;
  bool keepsSixteenBits = false;
  bool hasIccLab = false;            // a and b of Lab count from 128 up
  std::vector<RGBQUAD> colors = {};  // of kIndex
  std::uint16_t format = SAMPLEFORMAT_UINT;
  // What shows black and white, of samples that are no unsigned numbers of up to 16 bits.
  double low = 0;
  double high = 1;
  std::uint16_t compression = COMPRESSION_NONE;
  std::uint64_t mostRatio = 1;  // to which the compression can shrink a page
};

// Goes on by as many pages as there are, `most` at most, and gives their number. A chain that leads
// back to an earlier page ends there: unlike the library's own counting, this never runs in
// circles.
constexpr int kMostTiffPages = 65535;
int FollowPages(TIFF* tiff, int most = kMostTiffPages);

// Reads the tags of the directory at which the file stands.
TiffPage ReadTiffPage(TIFF* tiff);

}  // namespace modules

#endif  // MODULES_PICTURES_TIFF_PAGE_H
