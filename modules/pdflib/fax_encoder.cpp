// Group 4 coding. The TIFF library has the encoder: it writes a file of one strip into the spool,
// of which the document takes the strip alone.
#include <exception>
#include <memory>
#include <new>
#include <vector>

#include "pdflib/picture_coding.h"
#include "pictures/tiff_page.h"

namespace modules {
namespace {

// The directory, which nobody reads, is not written.
struct Discard {
  void operator()(TIFF* tiff) const { TIFFCleanup(tiff); }
};

// A TIFF file of which every byte is appended to the spool.
class SpooledTiff {
 public:
  SpooledTiff(Spool& spool, const DocumentRows& rows) : spool_(spool), start_(spool.size()) {
    TIFFOpenOptions* const options = TIFFOpenOptionsAlloc();
    if (options == nullptr) throw std::bad_alloc();
    const auto stayQuiet = [](TIFF*, void*, const char*, const char*, va_list) { return 1; };
    TIFFOpenOptionsSetErrorHandlerExtR(options, stayQuiet, nullptr);
    TIFFOpenOptionsSetWarningHandlerExtR(options, stayQuiet, nullptr);
    // Big files: a strip may pass the four gigabytes of the plain kind.
    tiff_.reset(TIFFClientOpenExt("spool", "wl8", this, Read, Write, Seek, Close, Size, nullptr,
                                  nullptr, options));
    TIFFOpenOptionsFree(options);
    const auto width = static_cast<std::uint32_t>(rows.width());
    const auto height = static_cast<std::uint32_t>(rows.height());
    TIFF* const tiff = tiff_.get();
    if (tiff == nullptr || TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, width) == 0 ||
        TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, height) == 0 ||
        TIFFSetField(tiff, TIFFTAG_ROWSPERSTRIP, height) == 0 ||
        TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, 1) == 0 ||
        TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, 1) == 0 ||
        TIFFSetField(tiff, TIFFTAG_FILLORDER, FILLORDER_MSB2LSB) == 0 ||
        TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_MINISBLACK) == 0 ||
        TIFFSetField(tiff, TIFFTAG_COMPRESSION, COMPRESSION_CCITTFAX4) == 0) {
      fail();
    }
  }
  SpooledTiff(const SpooledTiff&) = delete;
  SpooledTiff& operator=(const SpooledTiff&) = delete;

  void writeRow(std::uint8_t* row, int y) {
    if (TIFFWriteScanline(tiff_.get(), row, static_cast<std::uint32_t>(y), 0) != 1) fail();
  }

  // Ends the strip and tells where it lies.
  Spool::Range finish() {
    if (TIFFFlushData(tiff_.get()) != 1) fail();
    (void)spool_.rangeSince(start_);
    return {start_ + TIFFGetStrileOffset(tiff_.get(), 0), TIFFGetStrileByteCount(tiff_.get(), 0)};
  }

 private:
  [[noreturn]] void fail() {
    if (fault_) std::rethrow_exception(fault_);
    throw std::runtime_error("group 4 coding failed");
  }

  static SpooledTiff& Self(thandle_t handle) { return *static_cast<SpooledTiff*>(handle); }
  static tmsize_t Read(thandle_t /*handle*/, void* /*data*/, tmsize_t /*count*/) { return 0; }
  static tmsize_t Write(thandle_t handle, void* data, tmsize_t count) {
    return Self(handle).write(static_cast<const std::uint8_t*>(data), count);
  }
  static toff_t Seek(thandle_t handle, toff_t offset, int whence) {
    SpooledTiff& self = Self(handle);
    const toff_t base = whence == SEEK_END   ? self.spool_.size() - self.start_
                        : whence == SEEK_CUR ? self.position_
                                             : 0;
    return self.position_ = base + offset;
  }
  static int Close(thandle_t /*handle*/) { return 0; }
  static toff_t Size(thandle_t handle) { return Self(handle).spool_.size() - Self(handle).start_; }

  // Header and strip are written from front to back; anything else is refused. Nothing is thrown
  // through the library.
  tmsize_t write(const std::uint8_t* data, tmsize_t count) {
    if (start_ + position_ != spool_.size()) return 0;
    try {
      spool_.append(data, static_cast<std::size_t>(count));
    } catch (...) {
      fault_ = std::current_exception();
      return 0;
    }
    position_ += static_cast<std::uint64_t>(count);
    return count;
  }

  Spool& spool_;
  std::uint64_t start_;
  std::uint64_t position_ = 0;  // in bytes from start_
  std::unique_ptr<TIFF, Discard> tiff_;
  std::exception_ptr fault_;
};

}  // namespace

Spool::Range EncodeFax(DocumentRows& rows, Spool& spool) {
  SpooledTiff tiff(spool, rows);
  for (int y = 0; y < rows.height(); ++y) tiff.writeRow(rows.next().data(), y);
  return tiff.finish();
}

}  // namespace modules
