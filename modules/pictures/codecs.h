// The readers and writers, each in files of its own.
#ifndef MODULES_PICTURES_CODECS_H
#define MODULES_PICTURES_CODECS_H

#include <optional>
#include <span>

#include "pictures/picture.h"

namespace modules {

// The first bytes of a file, kHeadBytes of them when it is that long.
using Head = std::span<const std::uint8_t>;
constexpr std::size_t kHeadBytes = 512;

struct SaveRequest {
  const char* path = nullptr;  // where a file may stand already; after a failure it is of no use
  int format = 0;              // a FileFormat
  int quality = 0;             // 1..100, for the formats that know it
  bool appendPage = false;     // the file at path holds earlier pages: add one
  Report report = nullptr;
  // As zlib counts, 0 to 9; found by looking at the picture when it is not told.
  std::optional<int> pngLevel = {};
  bool lossless = false;  // of WebP
};

bool IsBmp(Head head);
ReaderHandle OpenBmp(const char* path, Report report);
// The fourth byte of 32-bit pixels is written as it is.
void SaveBmp(const SaveRequest& request, const LockedDib& image);

bool IsJpeg(Head head);
ReaderHandle OpenJpeg(const char* path, Report report);
void SaveJpeg(const SaveRequest& request, const LockedDib& image);

bool IsPng(Head head);
ReaderHandle OpenPng(const char* path, Report report);
// 16 bits are written as 24; PNG has no such depth.
void SavePng(const SaveRequest& request, const LockedDib& image);

bool IsTiff(Head head);
ReaderHandle OpenTiff(const char* path, Report report);
void SaveTiff(const SaveRequest& request, const LockedDib& image);

bool IsPsd(Head head);
ReaderHandle OpenPsd(const char* path, Report report);
void SavePsd(const SaveRequest& request, const LockedDib& image);

// Of a moving picture the first frame.
bool IsWebp(Head head);
ReaderHandle OpenWebp(const char* path, Report report);
// Refuses pictures that are wider or higher.
inline constexpr int kMostWebpPixels = 16383;
void SaveWebp(const SaveRequest& request, const LockedDib& image);
bool IsJxl(Head head);
ReaderHandle OpenJxl(const char* path, Report report);
// HEIC and AVIF.
bool IsHeif(Head head);
ReaderHandle OpenHeif(const char* path, Report report);

bool IsGif(Head head);
// The first frame.
ReaderHandle OpenGif(const char* path, Report report);

// Written by SaveRare.
bool IsTga(Head head);
ReaderHandle OpenTga(const char* path, Report report);

// The rare formats, by GraphicsMagick.
bool IsPcx(Head head);
bool IsDcx(Head head);
bool IsRas(Head head);
bool IsWpg(Head head);
bool IsWmf(Head head);
struct MagickKind;
ReaderHandle OpenRare(const MagickKind& kind, const char* path, Report report);
void SaveRare(const SaveRequest& request, const LockedDib& image);

}  // namespace modules

#endif  // MODULES_PICTURES_CODECS_H
