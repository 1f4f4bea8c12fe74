// The rare kinds of files that GraphicsMagick reads for us: how each is told from others, and what
// its own header says.
#ifndef MODULES_PICTURES_MAGICK_KINDS_H
#define MODULES_PICTURES_MAGICK_KINDS_H

#include <cstdint>
#include <span>

namespace modules {

// In dots per inch; 0 when there is none.
struct FileResolution {
  int x = 0;
  int y = 0;
};

struct MagickKind {
  using Bytes = std::span<const std::uint8_t>;

  const char* magick;  // the library's name
  int format;          // a FileFormat

  // These are asked of a whole file in memory that begins as its kind does, and may be null.

  // Whether it is worth showing to the library.
  bool (*isSound)(Bytes file) = nullptr;
  // Null: the image keeps its palette if it has one.
  int (*depth)(Bytes file) = nullptr;
  FileResolution (*resolution)(Bytes file, int page) = nullptr;
  // Null: none that has a name.
  const char* (*compression)(Bytes file, int page) = nullptr;
  // Null: one.
  int (*pages)(Bytes file) = nullptr;
};

extern const MagickKind kPcxKind;
extern const MagickKind kDcxKind;
extern const MagickKind kRasKind;
extern const MagickKind kPctKind;
extern const MagickKind kPcdKind;
extern const MagickKind kWpgKind;
extern const MagickKind kWmfKind;

// Whether the records of a Windows metafile follow each other from its header to its end mark and
// keep to what the header promises. The library under the library tells what it dislikes on
// standard error, so it gets to see none of what it would dislike.
bool IsSoundMetafile(std::span<const std::uint8_t> file);

// Whether WordPerfect graphics hold no record of PostScript: the library takes the data of one for
// a file of any kind and decodes that.
bool IsSoundWordPerfect(std::span<const std::uint8_t> file);

}  // namespace modules

#endif  // MODULES_PICTURES_MAGICK_KINDS_H
