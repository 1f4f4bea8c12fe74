// The formats of this build: how their files are told apart, and what reads and writes them.
#ifndef MODULES_PICTURES_FORMATS_H
#define MODULES_PICTURES_FORMATS_H

#include <string>
#include <string_view>

#include "pictures/codecs.h"

namespace modules {

// Fields stand in the order in which rows read best.
// NOLINTNEXTLINE(clang-analyzer-optin.performance.Padding)
struct Format {
  const char* name;
  int number;  // a FileFormat, which kinds of file may share; 0 for those that have none
  // Lower case, without dot, separated by spaces.
  std::string_view extensions;
  // Null for formats that are only written.
  ReaderHandle (*open)(const char* path, Report report);
  // Null for formats that are only read.
  void (*save)(const SaveRequest& request, const LockedDib& image);
  // Whether a file begins as this kind does. Null for kinds that are told by their extension alone.
  bool (*begins)(Head head) = nullptr;
  // The extension has to match too: the first bytes alone are no mark.
  bool needsExtension = false;
};

// What reads the file at a path, by what it holds and by its extension. Throws a ModuleError for
// what is no file, or no picture.
const Format& FormatOfFile(const std::string& path);
// What writes a FileFormat; null for none.
const Format* FormatThatWrites(int number);

// Name and version of each library in use, separated by ", ".
std::string CodecNames();

}  // namespace modules

#endif  // MODULES_PICTURES_FORMATS_H
