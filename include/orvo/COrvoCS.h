// COrvoCS: the toolkit's own algorithms on packed DIBs.
//
// Applications reach them through COrvoInstance (<orvo/instance.h>), whose table says what each
// operation does and takes; here stands what the handles do.
//
// Source and result. The caller sets the result handle before the call.
//   result equal to source      in place: the block's contents change, the handle stays.
//   result different (or null)  a new block is made, owned by the caller, and its handle overwrites
//                               the one that stood there, which is not freed. The source stays.
// Unless a method says otherwise a failure sets the result to the source, so compare the two before
// freeing both; ORVO_ERR_NULL_IMAGE sets it to null.
#ifndef ORVO_CORVOCS_H
#define ORVO_CORVOCS_H

#include <cstddef>
#include <cstdint>

#include <orvo/dib.h>
#include <orvo/export.h>
#include <orvo/records.h>

class CLeadTools;
class FrameImage;

class ORVO_API COrvoCS {
 public:
  COrvoCS() noexcept;
  // Unloads the converter that CSConvertRGB loaded.
  virtual ~COrvoCS();
  COrvoCS(const COrvoCS&) = delete;
  COrvoCS& operator=(const COrvoCS&) = delete;

  // Gives the object the binding that it asks for depth conversions. Called once, before all else;
  // the binding stays the caller's and must outlive this object.
  void CSSetLT(CLeadTools* tools) noexcept;

  // Level 0..10. 8-bit gray and 24 bits; 16 and 32 bits through a working copy.
  int CSSharpnessAdjust(DibHandle source, DibHandle* result, std::uint8_t level) noexcept;
  int CSHistogramAdjust(DibHandle source, DibHandle* result, std::uint8_t level) noexcept;
  // ORVO_ERR_FAILURE for an image with a side below 128; the result is then a copy of the source.
  int CSExposureAdjust(DibHandle source, DibHandle* result, std::uint8_t level) noexcept;

  // Red-eye: 24 bits; 16 and 32 bits through a working copy; else ORVO_ERR_BAD_DEPTH. x from the
  // left, y in stored rows, radius in pixels. ORVO_ERR_NULL_IMAGE leaves the result alone, and so
  // does the ORVO_ERR_FAILURE of a working copy that cannot be locked.
  //
  // The pupil at a point: centre and radius, 3 or more. ORVO_ERR_FAILURE when there is none; the
  // circle is then the point itself with the radius 2, with 0 for a point outside the image. Other
  // failures write no circle.
  int CSSearchRedEyeRegion(DibHandle source, std::uint32_t x, std::uint32_t y,
                           std::uint32_t* foundX, std::uint32_t* foundY,
                           std::uint32_t* foundRadius) noexcept;
  // Makes the disk dark and neutral, with a feathered edge up to five quarters of the radius. Only
  // the largest square round the centre that fits the image changes; nothing for a centre outside.
  int CSReduceRedEye(DibHandle source, DibHandle* result, std::uint32_t x, std::uint32_t y,
                     std::uint32_t radius) noexcept;
  // Finds and corrects red eyes in the whole picture. found receives 1 or 0 once the picture has
  // been searched. With nothing found the code is ORVO_ERR_FAILURE and the result an exact copy.
  int CSAutoRedEye(DibHandle source, DibHandle* result, int* found) noexcept;

  // threshold 0..255. 8-bit palettes and 24 bits.
  int CSWhitenessAdjust(DibHandle source, DibHandle* result, std::uint32_t threshold) noexcept;
  // library: name of a module that exports void vnColorConvertDIB(void* packedDib). The first one
  // that loads serves for the life of the object. ORVO_ERR_NULL_IMAGE leaves the result alone.
  int CSConvertRGB(DibHandle source, DibHandle* result, const char* library) noexcept;

  // level 0..3. 8-bit gray and 24 bits.
  int CSDescreen(DibHandle source, DibHandle* result, std::uint32_t level,
                 StatusCallback callback) noexcept;
  // The rectangle of what is dark on a light page, measured at one threshold: 0, 0, 1, 1 when
  // nothing is. Counts stored rows; right and bottom exclusive. 1-bit (through the binding), 8-bit
  // gray and 24 bits; reads only.
  int CSGetAutoTrimRect(DibHandle source, std::uint8_t threshold, RECT* rect) noexcept;

  // Memory of an object comes from the platform's working memory; new gives null when there is
  // none.
  static void* operator new(std::size_t bytes) noexcept;
  static void operator delete(void* memory) noexcept;

 private:
  using ColorConverter = void (*)(void* packedDib);
  using AdjustFunction = int (*)(const std::uint8_t* source, std::uint8_t* target,
                                 std::uint32_t width, std::uint32_t height, std::uint8_t depth,
                                 std::uint8_t level);

  int PrepareBitmapForImagingLib(DibHandle source, DibHandle* result, FrameImage& image) noexcept;
  int RunAdjust(DibHandle source, DibHandle* result, std::uint8_t level,
                AdjustFunction function) noexcept;

  void* converterModule = nullptr;
  ColorConverter converterEntry = nullptr;
  CLeadTools* leadTools = nullptr;
};

#endif  // ORVO_CORVOCS_H
