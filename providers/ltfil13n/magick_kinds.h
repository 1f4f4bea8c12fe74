// The rare kinds of files that GraphicsMagick reads for us: how each is told from others, and the
// depth that its own header gives.
#ifndef PROVIDERS_LTFIL13N_MAGICK_KINDS_H
#define PROVIDERS_LTFIL13N_MAGICK_KINDS_H

#include <cstdint>
#include <span>
#include <string_view>

namespace provider {

struct MagickKind {
  const char* magick;  // the library's name
  int format;          // a VendorFormat
  // head: the first bytes of the file, as many as a codec may count on, or all of it; more bytes
  // give a surer answer.
  bool (*matches)(std::span<const std::uint8_t> head, std::string_view extension);
  // 0 when the header does not say; the image then keeps its palette if it has one.
  int (*depth)(std::span<const std::uint8_t> head);
  // Pages in the whole file.
  int (*pages)(std::span<const std::uint8_t> file);
};

// Null when no kind matches. extension: lower case, without dot.
const MagickKind* MagickKindOf(std::span<const std::uint8_t> head, std::string_view extension);

}  // namespace provider

#endif  // PROVIDERS_LTFIL13N_MAGICK_KINDS_H
