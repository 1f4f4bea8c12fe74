// Group 4 coding. The TIFF library has the encoder: it writes a file of one strip beside the spool,
// of which the document takes the strip alone.
#include "documents/picture_coding.h"
#include "pictures/temporary_file.h"
#include "pictures/tiff_page.h"

namespace modules {

Spool::Range EncodeFax(DocumentRows& rows, Spool& spool) {
  const TemporaryFile file(spool.path());
  int faults = 0;
  // Big files: a strip may pass the four gigabytes of the plain kind.
  const TiffHandle handle = OpenTiffFile(file.path().string().c_str(), "w8", faults);
  Require(handle, kModuleWriteFailed);
  TIFF* const tiff = handle.get();
  const auto set = [=](std::uint32_t tag, int value) {
    Require(TIFFSetField(tiff, tag, value) != 0, kModuleWriteFailed);
  };
  set(TIFFTAG_IMAGEWIDTH, rows.width());
  set(TIFFTAG_IMAGELENGTH, rows.height());
  set(TIFFTAG_ROWSPERSTRIP, rows.height());
  set(TIFFTAG_BITSPERSAMPLE, 1);
  set(TIFFTAG_SAMPLESPERPIXEL, 1);
  set(TIFFTAG_FILLORDER, FILLORDER_MSB2LSB);
  set(TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_MINISBLACK);
  set(TIFFTAG_COMPRESSION, COMPRESSION_CCITTFAX4);
  for (int y = 0; y < rows.height(); ++y) {
    Require(TIFFWriteScanline(tiff, rows.next().data(), static_cast<std::uint32_t>(y), 0) == 1,
            kModuleWriteFailed);
  }
  Require(TIFFFlushData(tiff) == 1 && faults == 0, kModuleWriteFailed);
  return spool.take(file.path(), TIFFGetStrileOffset(tiff, 0), TIFFGetStrileByteCount(tiff, 0));
}

}  // namespace modules
