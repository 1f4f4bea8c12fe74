// What a picture that is coded anew takes over from the JPEG file it was loaded from: the quality
// table by table, the sharpness of the colours, and the way the file is built.
#ifndef APPS_ORVO_JPEG_JPEG_SOURCE_H
#define APPS_ORVO_JPEG_JPEG_SOURCE_H

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include <orvo/dib.h>

namespace client {

struct JpegManner {
  // Steps of the 64 frequencies, row by row.
  using Steps = std::array<std::uint16_t, 64>;
  struct Component {
    int id;
    // Sampling factors: samples in relation to the other components'.
    int across;
    int down;
    std::size_t table;  // one of the tables
    bool operator==(const Component&) const = default;
  };

  enum class Colors : std::uint8_t {
    kTones,
    kTonesAndTints,  // a tone and two differences from it: YCbCr
    kRedGreenBlue,
    kOther,  // inks
  };

  Colors colors{};
  std::vector<Component> components = {};
  std::array<std::optional<Steps>, 4> tables = {};
  bool progressive = false;
  unsigned restartInterval = 0;  // units between restart marks; 0 for none
  bool operator==(const JpegManner&) const = default;
};

// Nothing for files that are no JPEG, hold inks, or tell their tables late.
std::optional<JpegManner> MannerOf(const std::string& path);

// Writes a picture of 24 bits or 8-bit grays as JPEG in this manner; the density is the picture's.
// Colours in a manner for tones get its table throughout. Gives an ORVO_ code: ORVO_ERR_BAD_DEPTH
// for other pictures, ORVO_ERR_NOT_SUPPORTED for factors that nobody here can encode with. The
// target is not touched before all is written.
int SaveJpegLike(const JpegManner& manner, DibHandle picture, const std::string& target);

// The quality, 1 to 100, whose standard table for tones is nearest to the file's; 0 for files that
// are no JPEG.
int EstimatedQuality(const std::string& path);

}  // namespace client

#endif  // APPS_ORVO_JPEG_JPEG_SOURCE_H
