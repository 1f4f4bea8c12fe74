#include "client/bmp_files.h"

#include "support/pictures.h"

namespace {

constexpr std::size_t kFileHeaderBytes = 14;
constexpr std::size_t kPixelOffsetAt = 10;

}  // namespace

std::string BmpOf(const orvo::OwnedDib& picture) {
  const pictures::Locked image(picture.get());
  const orvo::DibLayout layout = image.layout();
  const auto total = static_cast<std::uint32_t>(layout.totalBytes + kFileHeaderBytes);
  const auto pixels = static_cast<std::uint32_t>(layout.pixelOffset + kFileHeaderBytes);
  std::string file(total, '\0');
  file.replace(0, 2, "BM");
  std::memcpy(&file[2], &total, sizeof total);
  std::memcpy(&file[kPixelOffsetAt], &pixels, sizeof pixels);
  std::memcpy(&file[kFileHeaderBytes], image.bytes(), layout.totalBytes);
  return file;
}

orvo::OwnedDib PictureIn(const std::string& bmp) {
  if (bmp.size() < kFileHeaderBytes + orvo::kDibHeaderBytes || !bmp.starts_with("BM")) return {};
  std::uint32_t pixels = 0;
  std::memcpy(&pixels, &bmp[kPixelOffsetAt], sizeof pixels);
  const std::size_t bytes = bmp.size() - kFileHeaderBytes;
  const auto layout = orvo::DibLayoutOf(&bmp[kFileHeaderBytes], bytes);
  if (!layout || layout->pixelOffset + kFileHeaderBytes != pixels) return {};
  orvo::OwnedDib picture(GlobalAlloc(orvo::kDibBlockFlags, layout->totalBytes));
  std::memcpy(pictures::Locked(picture.get()).bytes(), &bmp[kFileHeaderBytes], layout->totalBytes);
  return picture;
}

Color ColorAt(const orvo::OwnedDib& picture, int x, int y) {
  const pictures::Locked image(picture.get());
  const orvo::DibLayout layout = image.layout();
  const std::uint8_t* const row = image.row(layout.height - 1 - y);
  if (layout.depth == 8) {
    const RGBQUAD& color = image.palette()[row[x]];
    return {color.rgbBlue, color.rgbGreen, color.rgbRed};
  }
  const std::uint8_t* const pixel = row + std::ptrdiff_t{layout.depth / 8} * x;
  return {pixel[0], pixel[1], pixel[2]};
}
