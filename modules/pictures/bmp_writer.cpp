#include <algorithm>
#include <array>
#include <cstring>

#include "pictures/bmp_header.h"
#include "pictures/codecs.h"
#include "pictures/file_handle.h"

namespace modules {
namespace {

using Headers = std::array<std::uint8_t, kBmpFileHeaderBytes + orvo::kDibHeaderBytes>;

// The file's first 54 bytes: its own header, then that of the image.
Headers HeadersFor(const LockedDib& image, std::uint32_t pixelBytes) {
  Headers bytes{'B', 'M'};
  BITMAPINFOHEADER header{};
  header.biSize = sizeof header;
  header.biWidth = image->width;
  header.biHeight = image->height;
  header.biPlanes = 1;
  header.biBitCount = static_cast<std::uint16_t>(image->depth);
  header.biSizeImage = pixelBytes;
  header.biXPelsPerMeter = image.header().biXPelsPerMeter;
  header.biYPelsPerMeter = image.header().biYPelsPerMeter;
  const auto offset =
      static_cast<std::uint32_t>(bytes.size() + orvo::DibPaletteBytes(image->depth));
  const std::uint32_t fileBytes = offset + pixelBytes;
  std::memcpy(&bytes[2], &fileBytes, sizeof fileBytes);
  std::memcpy(&bytes[10], &offset, sizeof offset);
  std::memcpy(&bytes[kBmpFileHeaderBytes], &header, sizeof header);
  return bytes;
}

}  // namespace

// In blocks of rows, which lie in the file as in memory.
void SaveBmp(const SaveRequest& request, const LockedDib& locked) {
  constexpr std::size_t kMostFileBytes = 0xFFFFFFFF;
  constexpr std::size_t kMostHeaderBytes = 2048;
  constexpr std::size_t kBlockBytes = std::size_t{1} << 18;
  const Pixels& image = *locked;
  const std::size_t pixelBytes = image.stride * static_cast<std::size_t>(image.height);
  Require(pixelBytes <= kMostFileBytes - kMostHeaderBytes, kFileFormatNotWritten);

  WriteFile(request.path, [&](std::FILE* file) {
    const auto write = [=](const void* bytes, std::size_t count) {
      Require(std::fwrite(bytes, 1, count, file) == count, kModuleWriteFailed);
    };
    const Headers headers = HeadersFor(locked, static_cast<std::uint32_t>(pixelBytes));
    write(headers.data(), headers.size());
    if (image.palette != nullptr) write(image.palette, orvo::DibPaletteBytes(image.depth));
    Progress progress(pixelBytes, request.report);
    const std::size_t block = std::max<std::size_t>(kBlockBytes / image.stride, 1) * image.stride;
    for (std::size_t done = 0; done < pixelBytes;) {
      const std::size_t count = std::min(block, pixelBytes - done);
      write(image.bits + done, count);
      done += count;
      Require(progress.report(done), kModuleAborted);
    }
  });
}

}  // namespace modules
