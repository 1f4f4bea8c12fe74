// One kind of image file: how it is recognised, described, read and written. The module's entry
// points pick a codec by a file's first bytes, or by the format number of a save.
#ifndef MODULES_PICTURES_FORMATS_H
#define MODULES_PICTURES_FORMATS_H

#include <cstdint>
#include <span>

#include "binding/module_contract.h"
#include "common/dib_image.h"

namespace modules {

struct SaveRequest {
  const char* path;  // a temporary file, which the module moves over the target once all is written
  int format;        // a FileFormat
  int quality;       // 1..100, for the formats that know it
  bool appendPage;   // the file at path holds earlier pages: add one
};

struct Codec {
  // Bytes of `head` that a codec may count on when the file is that long.
  static constexpr std::size_t kHeadBytes = 512;

  // Whether a file is of this kind. extension: lower case, without dot, for kinds without a mark of
  // their own.
  bool (*recognises)(std::span<const std::uint8_t> head, const char* extension);
  // Describes a page (counted from 1); all fields but format's sizeOnDisk. Module code.
  int (*describe)(const char* path, int page, LTFILEINFO& info);
  // Reads a page into a bitmap that holds nothing. On failure it still holds nothing. Module code.
  int (*load)(const char* path, int page, struct_LEAD_Bitmap& bitmap);
  // Formats that save writes; empty for kinds that are only read.
  std::span<const int> formats;
  // Writes an image; what stands at request.path after a failure is deleted by the caller.
  // kFileFormatNotWritten when the depth cannot be written.
  int (*save)(const SaveRequest& request, const LockedDib& image);
  // Reads a page that may be shrunk, as long as it stays at least this large; null for kinds that
  // gain nothing by it.
  int (*loadAtLeast)(const char* path, int page, int width, int height,
                     struct_LEAD_Bitmap& bitmap) = nullptr;
};

// All codecs of this build, in the order in which they are asked.
std::span<const Codec* const> Codecs();

}  // namespace modules

#endif  // MODULES_PICTURES_FORMATS_H
