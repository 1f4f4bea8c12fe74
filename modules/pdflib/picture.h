// A picture on its way from a file into a document: what it is, and its rows.
#ifndef MODULES_PDFLIB_PICTURE_H
#define MODULES_PDFLIB_PICTURE_H

#include <cstdint>
#include <stdexcept>
#include <string>

#include "pictures/orientation.h"

namespace modules {

// In dots per inch; zeros when the file does not tell. A negative pair tells only how wide a pixel
// is beside its height: -1 and -2 are pixels twice as high as wide.
struct Resolution {
  float x = 0;
  float y = 0;
};

// From pixels per metre as headers keep them. Whole dots per inch that were rounded on their way
// into the header come out whole again.
Resolution ResolutionOf(std::int32_t xPixelsPerMetre, std::int32_t yPixelsPerMetre);
// From densities that have no unit; zeros when one of them is not above 0.
Resolution AspectOf(double xDensity, double yDensity);

// Measures and resolution as stored, before the orientation is applied.
struct Picture {
  int width = 0;
  int height = 0;
  int bits = 8;              // of a component: 1, 2, 4, 8 or 16
  int components = 1;        // 1 gray or index, 3 red, green and blue, 4 inks
  bool reversed = false;     // the highest value shows dark, or no ink
  std::string palette = {};  // red, green and blue of each index; empty for none
  Resolution resolution = {};
  int orientation = kUpright;

  [[nodiscard]] std::size_t rowBytes() const {
    return (static_cast<std::size_t>(width) * static_cast<std::size_t>(components) *
                static_cast<std::size_t>(bits) +
            7) /
           8;
  }
};

// The file cannot be read as a picture.
struct UnreadablePicture : std::runtime_error {
  using std::runtime_error::runtime_error;
};

// Gives the rows of a picture from the top, each rowBytes() long: components lie red first, values
// of 16 bits high byte first. Throws UnreadablePicture when the file is damaged.
class PictureReader {
 public:
  PictureReader() = default;
  virtual ~PictureReader() = default;
  PictureReader(const PictureReader&) = delete;
  PictureReader& operator=(const PictureReader&) = delete;

  [[nodiscard]] const Picture& picture() const { return picture_; }
  virtual void readRow(std::uint8_t* row) = 0;

 protected:
  Picture picture_;
};

// A tone as it shows on the white of the page; alpha 0 is clear, 255 covers.
constexpr std::uint8_t OnWhite(std::uint8_t tone, std::uint8_t alpha) {
  return static_cast<std::uint8_t>((tone * alpha + 255 * (255 - alpha) + 127) / 255);
}

}  // namespace modules

#endif  // MODULES_PDFLIB_PICTURE_H
