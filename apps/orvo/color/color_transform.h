// Pixels from the colours of a profile to sRGB and back. The library behind is loaded when the
// first profile is met; where it is missing no profile can be used.
#ifndef APPS_ORVO_COLOR_COLOR_TRANSFORM_H
#define APPS_ORVO_COLOR_COLOR_TRANSFORM_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

namespace client {

// How samples of 8 bits lie side by side.
enum class PixelForm {
  kTone,
  kBgr,
  kBgra,      // the fourth is opacity, and stays
  kInks,      // cyan, magenta, yellow, black; 255 is all ink
  kInksLeft,  // the same; 255 is none
};

// White to white, black to black. Empty when the profile is damaged or not for such pixels.
class ColorTransform {
 public:
  // Pixels keep their form, but for inks, which become kBgr.
  static ColorTransform ToSrgb(std::span<const std::uint8_t> profile, PixelForm from);
  // kBgr to kBgr.
  static ColorTransform FromSrgb(std::span<const std::uint8_t> profile);

  explicit operator bool() const { return transform_ != nullptr; }
  // Pixels that keep their form may stay where they are.
  void run(const std::uint8_t* from, std::uint8_t* to, std::size_t pixels) const;

 private:
  struct End {
    void operator()(void* transform) const;
  };
  explicit ColorTransform(void* transform = nullptr) : transform_(transform) {}

  std::unique_ptr<void, End> transform_;
};

// Whether a profile of tones, or of red, green and blue, says nothing that sRGB does not, but for
// what 8 bits hardly tell.
bool SaysSrgb(std::span<const std::uint8_t> profile);

}  // namespace client

#endif  // APPS_ORVO_COLOR_COLOR_TRANSFORM_H
