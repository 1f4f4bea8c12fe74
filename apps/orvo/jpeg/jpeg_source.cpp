#include "jpeg_source.h"

#include <algorithm>
#include <cstdlib>
#include <limits>
#include <new>
#include <utility>

#include <orvo/result_codes.h>

#include "jpeg_coding.h"

namespace client {
namespace {

using Colors = JpegManner::Colors;

std::optional<JpegManner> AnyMannerOf(const std::string& path) {
  try {
    const Bytes bytes = ReadBytes(path);
    return JpegInput(bytes).manner();
  } catch (const NotPossible&) {
    return std::nullopt;
  } catch (const modules::ModuleError&) {
    return std::nullopt;
  }
}

bool HasItsTables(const JpegManner& manner) {
  for (const JpegManner::Component& component : manner.components) {
    if (component.table >= manner.tables.size() || !manner.tables.at(component.table)) return false;
  }
  return true;
}

// The same for a picture of tones, or of colours: what the source has none of follows its tones.
JpegManner Suited(JpegManner manner, bool inTones) {
  JpegManner::Component first = manner.components.front();
  if (inTones == (manner.colors == Colors::kTones)) return manner;
  first.across = first.down = 1;
  if (inTones) {
    manner.colors = Colors::kTones;
    manner.components = {first};
    return manner;
  }
  manner.colors = Colors::kTonesAndTints;
  manner.components.clear();
  for (first.id = 1; first.id <= 3; ++first.id) manner.components.push_back(first);
  return manner;
}

// The table for tones that most encoders scale, at quality 50.
constexpr JpegManner::Steps kStandard = {16, 11, 10, 16, 24,  40,  51,  61,   //
                                         12, 12, 14, 19, 26,  58,  60,  55,   //
                                         14, 13, 16, 24, 40,  57,  69,  56,   //
                                         14, 17, 22, 29, 51,  87,  80,  62,   //
                                         18, 22, 37, 56, 68,  109, 103, 77,   //
                                         24, 35, 55, 64, 81,  104, 113, 92,   //
                                         49, 64, 78, 87, 103, 121, 120, 101,  //
                                         72, 92, 95, 98, 112, 100, 103, 99};

int Scaled(int step, int quality) {
  const int percent = quality < 50 ? 5000 / quality : 200 - 2 * quality;
  return std::clamp((step * percent + 50) / 100, 1, 255);
}

}  // namespace

std::optional<JpegManner> MannerOf(const std::string& path) {
  std::optional<JpegManner> manner = AnyMannerOf(path);
  if (manner && (manner->colors == Colors::kOther || !HasItsTables(*manner))) return std::nullopt;
  return manner;
}

int SaveJpegLike(const JpegManner& manner, DibHandle picture, const std::string& target) {
  const modules::LockedDib image(picture);
  if (!image) return ORVO_ERR_NO_BITMAP;
  const bool inTones = modules::BytesAreTones(*image);
  if (!inTones && image->depth != 24) return ORVO_ERR_BAD_DEPTH;
  try {
    WriteBytes(target,
               Encoded(Suited(manner, inTones), image, {0, 0, image->width, image->height}));
    return ORVO_OK;
  } catch (const NotPossible&) {
    return ORVO_ERR_NOT_SUPPORTED;
  } catch (const modules::ModuleError& error) {
    return error.code == kModuleNoMemory ? ORVO_ERR_NO_MEMORY : ORVO_ERR_FILE_IO;
  } catch (const std::bad_alloc&) {
    return ORVO_ERR_NO_MEMORY;
  }
}

int EstimatedQuality(const std::string& path) {
  const auto manner = AnyMannerOf(path);
  if (!manner || !HasItsTables(*manner)) return 0;
  const JpegManner::Steps& steps = *manner->tables.at(manner->components.front().table);
  int nearest = 0;
  int least = std::numeric_limits<int>::max();
  for (int quality = 100; quality > 0; --quality) {
    int distance = 0;
    for (std::size_t i = 0; i < steps.size(); ++i) {
      distance += std::abs(steps.at(i) - Scaled(kStandard.at(i), quality));
    }
    if (distance < least) nearest = quality;
    least = std::min(least, distance);
  }
  return nearest;
}

}  // namespace client
