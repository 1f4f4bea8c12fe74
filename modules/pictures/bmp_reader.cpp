// BMP. The rows of its usual form are those of an image in memory, so they are read and written in
// blocks, straight from and to the file.
#include <algorithm>
#include <array>
#include <cstring>
#include <memory>

#include "common/color.h"
#include "common/status.h"
#include "pictures/bmp_header.h"
#include "pictures/codecs.h"

namespace modules {
namespace {

constexpr std::size_t kBlockBytes = std::size_t{1} << 18;

int RowsPerBlock(const Pixels& image) {
  return static_cast<int>(std::max<std::size_t>(kBlockBytes / image.stride, 1));
}

bool Recognises(std::span<const std::uint8_t> head, const char* /*extension*/) {
  constexpr std::size_t kHeaderSizeAt = 14;
  if (head.size() < kHeaderSizeAt + 4 || head[0] != 'B' || head[1] != 'M') return false;
  const std::uint32_t size = Little32(&head[kHeaderSizeAt]);
  return size == 12 || (size >= 16 && size <= 256);
}

const char* CompressionOf(const BmpHeader& header) {
  const bool runs = header.compression == BI_RLE8 || header.compression == BI_RLE4;
  return runs ? "RLE" : "none";
}

// Opens a file of one page and reads what stands before the pixels.
int Open(const char* path, int page, FileHandle& file, BmpHeader& header) {
  if (page != 1) return kModuleBadParameter;
  file = OpenFile(path, "rb");
  return file ? ReadBmpHeader(file.get(), FileSize(path), header) : kModuleFileNotOpened;
}

int Describe(const char* path, int page, LTFILEINFO& info) {
  FileHandle file;
  BmpHeader header;
  const int code = Open(path, page, file, header);
  if (code == kModuleSuccess) {
    DescribeImage(header.image, kFormatBmp, CompressionOf(header), info);
  }
  return code;
}

// Turns pixels of unusual channels into plain ones, in place.
void MakePlain(const BmpHeader& header, const Pixels& image, std::uint8_t* row) {
  for (int x = 0; x < image.width; ++x) {
    if (image.depth == 16) {
      const std::uint32_t pixel = Little16(row);
      const std::uint16_t plain =
          With555(0, {header.blue.tone(pixel), header.green.tone(pixel), header.red.tone(pixel)});
      std::memcpy(row, &plain, sizeof plain);
      row += 2;
    } else {
      const std::uint32_t pixel = Little32(row);
      *row++ = header.blue.tone(pixel);
      *row++ = header.green.tone(pixel);
      *row++ = header.red.tone(pixel);
      *row++ = header.alpha.tone(pixel);
    }
  }
}

int ReadRows(std::FILE* file, const BmpHeader& header, const Pixels& image) {
  Progress progress(static_cast<std::uint64_t>(image.height));
  const int rowsPerBlock = header.topDown ? 1 : RowsPerBlock(image);
  for (int done = 0; done < image.height; done += rowsPerBlock) {
    const int rows = std::min(rowsPerBlock, image.height - done);
    const int first = header.topDown ? image.height - 1 - done : done;
    const std::size_t bytes = image.stride * static_cast<std::size_t>(rows);
    if (std::fread(image.row(first), 1, bytes, file) != bytes) return kModuleReadFailed;
    if (!header.isPlain) {
      for (int y = first; y < first + rows; ++y) MakePlain(header, image, image.row(y));
    }
    if (!progress.report(static_cast<std::uint64_t>(done) + static_cast<std::uint64_t>(rows)))
      return kModuleAborted;
  }
  return kModuleSuccess;
}

int ReadRuns(std::FILE* file, const BmpHeader& header, const Pixels& image) {
  const auto bytes = static_cast<std::size_t>(header.pixelBytes);
  const auto data = std::make_unique_for_overwrite<std::uint8_t[]>(bytes);
  if (std::fread(data.get(), 1, bytes, file) != bytes) return kModuleReadFailed;
  return DecodeBmpRuns(data.get(), bytes, image);
}

// Module code: whether the file is long enough for what it claims.
int CheckLength(const BmpHeader& header) {
  constexpr std::uint64_t kMostRunRatio = 1024;
  const FileImage& image = header.image;
  const auto layout = orvo::DibLayoutFor(image.width, image.height, image.depth);
  if (!layout) return kFileFormatDamaged;
  const std::uint64_t needed = layout->totalBytes - layout->pixelOffset;
  const bool runs = header.compression == BI_RLE8 || header.compression == BI_RLE4;
  const bool enough =
      runs ? IsPlausible(needed, header.pixelBytes, kMostRunRatio) : needed <= header.pixelBytes;
  return enough ? kModuleSuccess : kModuleReadFailed;
}

int Load(const char* path, int page, struct_LEAD_Bitmap& bitmap) {
  FileHandle file;
  BmpHeader header;
  if (const int code = Open(path, page, file, header); code != kModuleSuccess) return code;
  if (const int code = CheckLength(header); code != kModuleSuccess) return code;
  if (std::fseek(file.get(), static_cast<long>(header.pixelOffset), SEEK_SET) != 0) {
    return kModuleReadFailed;
  }
  return LoadImage(header.image, bitmap, [&](const Pixels& image) {
    if (image.palette != nullptr) {
      std::memcpy(image.palette, header.palette.data(), orvo::DibPaletteBytes(image.depth));
    }
    const bool runs = header.compression == BI_RLE8 || header.compression == BI_RLE4;
    return runs ? ReadRuns(file.get(), header, image) : ReadRows(file.get(), header, image);
  });
}

constexpr std::array<int, 1> kFormats{kFormatBmp};

// The file's first 54 bytes: its own header, then that of the image.
std::array<std::uint8_t, kBmpFileHeaderBytes + orvo::kDibHeaderBytes> HeadersFor(
    const LockedDib& image, std::uint32_t pixelBytes) {
  std::array<std::uint8_t, kBmpFileHeaderBytes + orvo::kDibHeaderBytes> bytes{'B', 'M'};
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

// The fourth byte of 32-bit pixels is written as it is.
int Save(const SaveRequest& request, const LockedDib& locked) {
  const Pixels& image = *locked;
  const std::size_t pixelBytes = image.stride * static_cast<std::size_t>(image.height);
  constexpr std::size_t kMostFileBytes = 0xFFFFFFFF;
  constexpr std::size_t kMostHeaderBytes = 2048;
  if (pixelBytes > kMostFileBytes - kMostHeaderBytes) return kFileFormatNotWritten;

  FileHandle file = OpenFile(request.path, "wb");
  if (!file) return kModuleFileNotOpened;
  const auto headers = HeadersFor(locked, static_cast<std::uint32_t>(pixelBytes));
  bool written = std::fwrite(headers.data(), headers.size(), 1, file.get()) == 1;
  if (image.palette != nullptr) {
    written = written &&
              std::fwrite(image.palette, orvo::DibPaletteBytes(image.depth), 1, file.get()) == 1;
  }
  Progress progress(static_cast<std::uint64_t>(image.height));
  const int rowsPerBlock = RowsPerBlock(image);
  for (int done = 0; written && done < image.height; done += rowsPerBlock) {
    const int rows = std::min(rowsPerBlock, image.height - done);
    const std::size_t bytes = image.stride * static_cast<std::size_t>(rows);
    written = std::fwrite(image.row(done), 1, bytes, file.get()) == bytes;
    if (!progress.report(static_cast<std::uint64_t>(done) + static_cast<std::uint64_t>(rows)))
      return kModuleAborted;
  }
  return CloseWritten(std::move(file)) && written ? kModuleSuccess : kModuleWriteFailed;
}

}  // namespace

const Codec kBmpCodec{Recognises, Describe, Load, kFormats, Save};

}  // namespace modules
