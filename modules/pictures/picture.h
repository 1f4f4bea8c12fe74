// A page of a picture file: what it is, and its rows. All readers of files give pages in this form,
// for bitmaps as for documents.
#ifndef MODULES_PICTURES_PICTURE_H
#define MODULES_PICTURES_PICTURE_H

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "common/guard.h"
#include "common/status.h"
#include "pictures/orientation.h"

namespace modules {

// Measures and resolution as stored, before the orientation is applied.
struct Picture {
  int width = 0;
  int height = 0;
  int samples = 1;  // of a pixel: 1 tone or index; 3 blue, green, red; 4 alpha too, or the four
                    // inks; 5 the inks and alpha
  int bits = 8;  // of a sample: 8; of a tone or index also 1, 2, 4 and, high byte first, 16; 5 for
                 // colours in a pixel of 16 bits
  bool isGray = false;                // the colours are tones
  bool hasInks = false;               // cyan, magenta, yellow and black
  bool reversed = false;              // the highest value shows dark, or no ink
  bool hasAlpha = false;              // a single sample has it from its palette
  std::vector<RGBQUAD> palette = {};  // of the indexes; with alpha, that is the fourth byte
  bool bottomUp = false;              // the lowest row comes first
  int orientation = kUpright;
  int narrowedFrom = 0;  // bits of a sample in the file, when the rows have fewer; else 0
  // 0 when the file does not tell.
  std::int32_t xPixelsPerMetre = 0;
  std::int32_t yPixelsPerMetre = 0;
  // Pixels in each direction on a length of its own that no unit tells; 0 for none.
  double xDensity = 0;
  double yDensity = 0;
  int format = 0;  // a FileFormat
  const char* compression = "none";

  [[nodiscard]] std::size_t rowBytes() const;
  // Of a bitmap that takes the picture.
  [[nodiscard]] int depth() const;
  // The samples and bits of a plain bitmap's pixels.
  void setDepth(int depth);
  // Units as tags count them: 1 none, 2 an inch, 3 a centimetre; others tell nothing.
  void setResolution(double x, double y, unsigned unit);
};

// How documents hold pictures.
enum class Coding : std::uint8_t {
  kFlate,
  kFlateDifferences,  // each component as the difference from its left neighbour
  kFlateFilters,      // rows that each begin with the number of their filter, as PNG has them
  kFax,               // group 4, highest bit first; coded black is bit 1
  kJpeg,
  kJpegOfRgb,  // the components are red, green and blue themselves
};

// A stretch of the file that documents can hold as it is.
struct CodedStretch {
  Coding coding{};
  std::uint64_t start = 0;  // in bytes, as is the length
  std::uint64_t bytes = 0;
};

// What stands beside a picture in the file, as far as the library behind its reader tells it.
struct Attachments {
  std::vector<std::uint8_t> exif;  // begins with its byte order
  std::string xmp;
  std::vector<std::uint8_t> profile;  // of the colours
  // Of the colours where there is no profile: code points of video, 2 tells nothing.
  int primaries = 2;
  int transfer = 2;
};

// What documents can hold as it is, though it lies in several stretches, or needs something before
// it.
struct CodedParts {
  Coding coding{};
  int bits = 8;  // of a component
  std::vector<std::uint8_t> head = {};
  struct Stretch {
    std::uint64_t start = 0;  // in bytes, as is the length
    std::uint64_t bytes = 0;
  };
  std::vector<Stretch> stretches = {};
};

// Reads one file, in this order: goTo, start, then each row once. Failures throw, as a rule a
// ModuleError.
class PictureReader {
 public:
  // Touches no file yet. path outlives the reader; a null report is told nothing.
  PictureReader(const char* path, Report report) : path_(path), report_(report) {}
  virtual ~PictureReader() = default;
  PictureReader(const PictureReader&) = delete;
  PictureReader& operator=(const PictureReader&) = delete;

  // Reads what stands before the rows of a page, counted from 1. False when there is no such page.
  // Refuses pictures beyond the limits of files.
  bool goTo(int page);
  [[nodiscard]] const Picture& picture() const { return picture_; }
  // Counts the pages. No row can be read afterwards.
  virtual int pageCount() { return 1; }
  // Gives the inks of a picture that has them in the file, not their mixture; to be said before
  // start.
  virtual void keepInks() {}
  // Lets the picture shrink as long as it stays at least this large as stored.
  virtual void shrinkTo(int /*width*/, int /*height*/) {}
  // Lets samples of 16 bits stay so, where that can be: high byte first, colours red first.
  virtual void keepSixteenBits() {}

  // Makes ready for the rows. Refuses pictures that the file is too short to hold.
  virtual void start() = 0;
  // Fills in the next row: rowBytes, and up to three bytes more.
  // The report stops it with kModuleAborted.
  virtual void readRow(std::uint8_t* row) = 0;
  // Whether the rows read hold none that was made up for want of sound data.
  [[nodiscard]] virtual bool isWhole() const { return true; }
  [[nodiscard]] virtual std::optional<CodedStretch> codedStretch() const { return std::nullopt; }
  [[nodiscard]] virtual Attachments attachments() const { return {}; }
  // The same for more kinds of data. Asked for before the rows are read.
  [[nodiscard]] virtual std::optional<CodedParts> codedParts();

 protected:
  virtual bool readHeader(int page) = 0;
  // Progress of the work that start begins, in steps of any kind.
  void expectSteps(std::uint64_t steps) { progress_ = Progress(steps, report_); }
  void endStep() { Require(progress_.report(++step_), kModuleAborted); }

  const char* path_;
  Report report_;
  Picture picture_;

 private:
  Progress progress_{1, nullptr};
  std::uint64_t step_ = 0;
};
using ReaderHandle = std::unique_ptr<PictureReader>;

// Refuses what is about to take more bytes than one file may.
void RequireMemory(std::uint64_t bytes);

// Pixels per metre, rounded; 0 for what no header can hold.
std::int32_t PixelsPerMetreOf(double dots, double metres);

// A tone of 16 bits, rounded to nearest.
constexpr std::uint8_t Narrowed16(std::uint32_t tone) {
  return static_cast<std::uint8_t>((tone * 255 + 32767) / 65535);
}

}  // namespace modules

#endif  // MODULES_PICTURES_PICTURE_H
