// The toolkit's public face: one object, one table of sixty operations.
//
//   COrvoInstance* toolkit = CreateORVOInstance();
//   DibHandle photo = nullptr;
//   if (toolkit->LoadFile("in.jpg", &photo) == ORVO_OK) {
//     if (toolkit->SharpnessAdjustInPlace(photo, 7) == ORVO_OK) {
//       toolkit->SaveFile(photo, "out.png", 0, 0);
//     }
//     GlobalFree(photo);
//   }
//   DestroyORVOInstance(toolkit);
//
// C++ callers may leave the releases to <orvo/raii.h>.
//
// The layout is fixed: an instance begins with one pointer to a table of exactly sixty function
// pointers in the order below, each called with the instance as first argument, so that any
// language can reach an operation by its place.
//
// Images are packed DIBs in movable blocks (<orvo/dib.h>). Unless an entry says otherwise its
// result is one of <orvo/result_codes.h>, ORVO_OK for success.
//
// Pairs. An operation and its ...InPlace partner do the same. In the entries below
//   source    is a handle, read only unless the name ends in InPlace; null gives
//             ORVO_ERR_NULL_IMAGE;
//   result    points to the caller's handle, which receives a new block that the caller owns. The
//             operations marked [own] overwrite the handle that stood there; those marked [module]
//             free it first, except ChangeResolution;
//   image     points to the caller's handle, which the call may replace: afterwards the variable
//             holds the one valid handle, success or not;
//   callback  may be null; see StatusCallback in <orvo/records.h>.
//
// On failure the source is unchanged and the caller's handle valid; the result is often set to the
// source, so compare the two before freeing both. Operations marked [module] return
// ORVO_ERR_NO_VENDOR when the module that carries them out is missing. A block that is too small
// for what its header claims is treated as one that cannot be locked.
//
// Rows count as stored (row 0 is the bottom line of the picture) unless told otherwise.
//
// Threads. An operation runs on its caller's thread, and so does the callback. What must not
// overlap is the caller's to keep apart, by taking turns or by a lock:
//   - calls of one instance, its end among them; which thread makes them does not matter;
//   - calls on one image, unless all of them only read it.
// Instances may work at the same time in threads of their own, each on its own images and files.
// They share the callback that was given last and the dithering mode, which a new instance sets to
// 1: threads that work at the same time pass no callback, which would be told of the others' work
// and might stop it, and leave the mode alone. Builds without NDEBUG say on standard error when
// calls overlap.
#ifndef ORVO_INSTANCE_H
#define ORVO_INSTANCE_H

#include <orvo/dib.h>
#include <orvo/export.h>
#include <orvo/records.h>
#include <orvo/result_codes.h>

class CLeadTools;
class COrvoCS;
class COrvoInstance;

extern "C" {
// A new instance, or null when its memory cannot be had. Missing modules do not stop it.
ORVO_API COrvoInstance* CreateORVOInstance() noexcept;
// Ends an instance; null does nothing. Images that it made stay with their owners.
ORVO_API void DestroyORVOInstance(COrvoInstance* instance) noexcept;
}

class ORVO_API COrvoInstance {
 public:
  // 0. Ends the instance; with bit 0 of flag set its memory is released too. DestroyORVOInstance is
  // the usual way.
  virtual void Destroy(unsigned flag) noexcept;

  // 1, 2 [own]. Hands a copy of the image, or the image itself, to a colour converter: a module of
  // the caller's that exports void vnColorConvertDIB(void* packedDib) and changes the DIB in place.
  // library: its file name. The first one that loads serves for the life of the instance.
  // ORVO_ERR_NO_CONVERTER: it cannot be loaded or lacks the function. Any depth. A null source
  // leaves the result alone.
  virtual int ConvertRGB(DibHandle source, DibHandle* result, const char* library) noexcept;
  virtual int ConvertRGBInPlace(DibHandle source, const char* library) noexcept;

  // 3, 4 [own]. Sharpens with a 5x5 kernel; level 0 (none) to 10, else ORVO_ERR_OUT_OF_RANGE. The
  // same level acts more gently on images below 1536 pixels. 8-bit gray, 24 bits; 16 and 32 bits
  // are brought to 24 and back by the kernel module; else ORVO_ERR_BAD_DEPTH.
  virtual int SharpnessAdjust(DibHandle source, DibHandle* result, std::uint8_t level) noexcept;
  virtual int SharpnessAdjustInPlace(DibHandle source, std::uint8_t level) noexcept;
  // 5, 6 [own]. Stretches the tones of the whole image; level and depths as for sharpness.
  virtual int HistogramAdjust(DibHandle source, DibHandle* result, std::uint8_t level) noexcept;
  virtual int HistogramAdjustInPlace(DibHandle source, std::uint8_t level) noexcept;
  // 7, 8 [own]. Equalises tones locally; level and depths as for sharpness.
  virtual int ExposureAdjust(DibHandle source, DibHandle* result, std::uint8_t level) noexcept;
  virtual int ExposureAdjustInPlace(DibHandle source, std::uint8_t level) noexcept;

  // 9. Centre and radius, in pixels, of the red pupil at the pixel (x, y); x from the left, y in
  // stored rows. ORVO_ERR_FAILURE when there is none, and the circle is then the point itself with
  // a radius of 2, or of 0 for a point outside the image. Red-eye, 9 to 13, takes 24 bits, and 16
  // and 32 by way of the kernel module; else ORVO_ERR_BAD_DEPTH.
  virtual int SearchRedEyeRegion(DibHandle source, std::uint32_t x, std::uint32_t y,
                                 std::uint32_t* foundX, std::uint32_t* foundY,
                                 std::uint32_t* foundRadius) noexcept;
  // 10, 11 [own]. Makes the disk of that centre and radius dark and neutral, with a soft edge that
  // ends at five quarters of the radius. A disk that does not fit is cut to the largest square
  // round its centre; a centre outside the image changes nothing. A null source leaves the result
  // alone, as in 12 and 13.
  virtual int ReduceRedEye(DibHandle source, DibHandle* result, std::uint32_t x, std::uint32_t y,
                           std::uint32_t radius) noexcept;
  virtual int ReduceRedEyeInPlace(DibHandle source, std::uint32_t x, std::uint32_t y,
                                  std::uint32_t radius) noexcept;
  // 12, 13 [own]. Finds and corrects red eyes in the whole picture. found receives 1 or 0; preset
  // it to 0, early failures do not write it. With nothing found the code is ORVO_ERR_FAILURE and
  // AutoRedEye leaves a null result; a block of the caller's that stood there is then freed after
  // an early failure.
  virtual int AutoRedEyeInPlace(DibHandle source, int* found) noexcept;
  virtual int AutoRedEye(DibHandle source, DibHandle* result, int* found) noexcept;

  // 14, 15 [own]. Makes pixels white whose channels all reach the threshold, 0..255. 24 bits, and
  // 8 bits by way of the palette.
  virtual int WhitenessAdjust(DibHandle source, DibHandle* result,
                              std::uint32_t threshold) noexcept;
  virtual int WhitenessAdjustInPlace(DibHandle source, std::uint32_t threshold) noexcept;

  // 16, 17 [own]. Smooths a scan of screened print; level 0 (window of 3) to 3 (window of 9). A
  // sharpenAmount of 1..100 then sharpens by LeadSharpnessAdjust with ten times that change; 0 does
  // not. If only that step fails its code comes back and the result holds the smoothed image.
  virtual int Descreen(DibHandle source, DibHandle* result, std::uint32_t level,
                       std::uint32_t sharpenAmount, StatusCallback callback) noexcept;
  virtual int DescreenInPlace(DibHandle source, std::uint32_t level, std::uint32_t sharpenAmount,
                              StatusCallback callback) noexcept;

  // 18 [module]. Fills the record; the toolkit's own version is written even when the module fails.
  virtual int GetVersion(ORVOVERSIONINFO* info) noexcept;

  // 19, 20 [module]. Resamples so that the physical size stays and stamps the resolution, in dots
  // per inch. 4 bits and up. ORVO_ERR_NOT_SUPPORTED when the image has no resolution. The result is
  // overwritten without being freed.
  virtual int ChangeResolution(DibHandle source, DibHandle* result, int horizontal, int vertical,
                               StatusCallback callback) noexcept;
  virtual int ChangeResolutionInPlace(DibHandle* image, int horizontal, int vertical,
                                      StatusCallback callback) noexcept;
  // 21, 22 [module]. change -1000..1000: -1000 leaves mid-gray, 1000 is strongest. 4 bits and up.
  virtual int ContrastAdjust(DibHandle source, DibHandle* result, int change,
                             StatusCallback callback) noexcept;
  virtual int ContrastAdjustInPlace(DibHandle* image, int change, StatusCallback callback) noexcept;
  // 23, 24 [module]. bits: 1, 4, 8, 16 (5-5-5), 24 or 32, from 4 bits up. Fewer colours are chosen
  // as an optimised palette and dithered by SetDitheringMode. Exact where that is possible.
  virtual int ConvertToColorRes(DibHandle source, DibHandle* result, int bits) noexcept;
  virtual int ConvertToColorResInPlace(DibHandle* image, int bits) noexcept;
  // 25, 26 [module]. To 8-bit gray, from any depth.
  virtual int ConvertToGrayScaleRes(DibHandle source, DibHandle* result,
                                    StatusCallback callback) noexcept;
  virtual int ConvertToGrayScaleResInPlace(DibHandle* image, StatusCallback callback) noexcept;
  // 27, 28 [module]. gamma in hundredths, not 0: 100 changes nothing, above brightens. 4 bits and
  // up.
  virtual int GammaAdjust(DibHandle source, DibHandle* result, unsigned gamma,
                          StatusCallback callback) noexcept;
  virtual int GammaAdjustInPlace(DibHandle* image, unsigned gamma,
                                 StatusCallback callback) noexcept;
  // 29, 30 [module]. Turns the hue by change hundredths of a degree, any value. 4 bits and up.
  virtual int HueAdjust(DibHandle source, DibHandle* result, int change,
                        StatusCallback callback) noexcept;
  virtual int HueAdjustInPlace(DibHandle* image, int change, StatusCallback callback) noexcept;
  // 31, 32 [module]. change -1000 (black) to 1000 (white). 4 bits and up; a refused depth sets the
  // result to the source.
  virtual int IntensityAdjust(DibHandle source, DibHandle* result, int change,
                              StatusCallback callback) noexcept;
  virtual int IntensityAdjustInPlace(DibHandle* image, int change,
                                     StatusCallback callback) noexcept;
  // 33, 34 [module]. Negative. 4 bits and up; palettes keep their indices.
  virtual int Invert(DibHandle source, DibHandle* result, StatusCallback callback) noexcept;
  virtual int InvertInPlace(DibHandle* image, StatusCallback callback) noexcept;
  // 35, 36 [module]. Turns clockwise by whole degrees; the image grows to hold the turned one, what
  // is uncovered is white. Quarter turns move pixels unchanged. Any depth.
  virtual int Rotate(DibHandle source, DibHandle* result, int angle,
                     StatusCallback callback) noexcept;
  virtual int RotateInPlace(DibHandle* image, int angle, StatusCallback callback) noexcept;
  // 37, 38 [module]. change -1000 (gray) to 1000. 4 bits and up.
  virtual int SaturationAdjust(DibHandle source, DibHandle* result, int change,
                               StatusCallback callback) noexcept;
  virtual int SaturationAdjustInPlace(DibHandle* image, int change,
                                      StatusCallback callback) noexcept;
  // 39 [module]. How ConvertToColorRes spreads what a palette cannot show: 1 Floyd-Steinberg (the
  // start), 2 Stucki, 3 Burkes, 4 Sierra, 5 Stevenson-Arce, 6 Jarvis-Judice-Ninke, 7 ordered 8x8,
  // 8 clustered 4x4, any other number none.
  virtual int SetDitheringMode(int mode) noexcept;
  // 40, 41 [module]. change -1000 (softest) to 1000 (sharpest). 4 bits and up.
  virtual int LeadSharpnessAdjust(DibHandle source, DibHandle* result, int change,
                                  StatusCallback callback) noexcept;
  virtual int LeadSharpnessAdjustInPlace(DibHandle* image, int change,
                                         StatusCallback callback) noexcept;

  // 42, 43 [module]. Cuts a scanned page's light margin away. A higher threshold, 0..255, counts
  // fewer pixels as dark. 1-bit, 8-bit gray, 24 bits.
  virtual int AutoTrim(DibHandle source, DibHandle* result, std::uint8_t threshold) noexcept;
  virtual int AutoTrimInPlace(DibHandle* image, std::uint8_t threshold) noexcept;
  // 44 [own]. The rectangle that AutoTrim would keep: pixels and stored rows, right and bottom
  // exclusive. 1-bit pages need the kernel module.
  virtual int GetAutoTrimRect(DibHandle source, std::uint8_t threshold, RECT* rect) noexcept;

  // 45 [module]. Reads an image file's first page at its own depth and resolution. result receives
  // a block that the caller owns; one that stood there is freed once the load has succeeded, and
  // stays on failure. path: at most 259 characters. ORVO_ERR_FILE_NOT_FOUND, ORVO_ERR_FILE_OPEN,
  // ORVO_ERR_FILE_IO, ORVO_ERR_BAD_FORMAT, ORVO_ERR_NO_MEMORY.
  virtual int LoadFile(const char* path, DibHandle* result) noexcept;
  // 46, 47 [module]. Resizes to width x height pixels; flags 0 nearest, 2 bilinear, 4 best (area
  // mean downward, bicubic upward). Any depth.
  virtual int ChangeSize(DibHandle source, DibHandle* result, int width, int height, unsigned flags,
                         StatusCallback callback) noexcept;
  virtual int ChangeSizeInPlace(DibHandle* image, int width, int height, unsigned flags,
                                StatusCallback callback) noexcept;
  // 48 [module]. A picture of the file of exactly width x height pixels, the image centred on white
  // with its aspect kept. result as for LoadFile.
  virtual int CreateThumbnailFromFile(const char* path, DibHandle* result, int width,
                                      int height) noexcept;
  // 49, 50 [module]. Replaces tone v by table[v]; 256 entries of 0..255, kept by the caller.
  // channel: 0 all, 1 red, 2 green, 3 blue. 4 bits and up; palettes keep their indices.
  virtual int RemapIntensity(DibHandle source, DibHandle* result, const std::uint32_t* table,
                             int channel, StatusCallback callback) noexcept;
  virtual int RemapIntensityInPlace(DibHandle* image, const std::uint32_t* table, int channel,
                                    StatusCallback callback) noexcept;

  // 51. 1 when the name's extension is one of an image file, else 0; no result code. The file is
  // not opened.
  virtual int IsImageFileName(const char* path) noexcept;
  // 52 [module]. Writes the image in the format that the extension names (docs/formats.md). flag
  // not 0 adds a page to a TIFF file. quality: 1..100 for JPEG, 0 for the default. The target is
  // only replaced by a complete file. ORVO_ERR_BAD_FORMAT for other extensions.
  virtual int SaveFile(DibHandle source, const char* path, int flag, int quality) noexcept;
  // 53. Copies out the extensions that can be loaded: upper case, without dot, each closed by a
  // NUL, the list by one more. count receives their number, size the bytes needed. A first call
  // with *size 0 learns the size: ORVO_ERR_BUFFER_TOO_SMALL. count may be null.
  virtual int GetFileExtensions(int* count, char* buffer, std::uint32_t* size) noexcept;

  // 54. Lists the items that lie on a page. list receives an array of *count records to be released
  // with GlobalFree; with nothing found *count is 0 and list stays as it was. reach: source pixels
  // across which parts join; level: gray 0..255 from which a pixel is background. Rectangles count
  // from the top of the picture as shown. Always ORVO_OK, but for null pointers.
  virtual int FindRegions(DibHandle source, RegionRecord** list, int* count, int reach,
                          int level) noexcept;
  // 55 [module]. Turns a crooked page upright. result as for the other [module] operations; angle
  // may be null and receives hundredths of a degree. callback cannot stop it.
  virtual int AutoDeskew(DibHandle source, DibHandle* result, int* angle,
                         StatusCallback callback) noexcept;

  // 56 [module]. What a file holds, without loading it. ORVO_ERR_BAD_ARGUMENT for a null pointer,
  // ORVO_ERR_BAD_FILE when the file does not exist, ORVO_ERR_FAILURE when it cannot be read.
  virtual int ImageFileInfo(const char* path, ORVOIMAGEFILEINFO* info) noexcept;
  // 57 [module]. Writes a one-page file in the format that the target's extension names, at the
  // source's depth. ORVO_ERR_BAD_FORMAT for other extensions and sources of several pages,
  // ORVO_ERR_BAD_FILE for a source that cannot be read, ORVO_ERR_FAILURE when the writing fails.
  virtual int ConvertFile(const char* source, const char* target, int quality,
                          StatusCallback callback) noexcept;

  // 58, 59 [module]. Cuts to a rectangle of pixels and stored rows, right and bottom exclusive.
  virtual int TrimInPlace(DibHandle* image, int left, int top, int right, int bottom) noexcept;
  virtual int Trim(DibHandle source, DibHandle* result, int left, int top, int right,
                   int bottom) noexcept;

 private:
  friend COrvoInstance* CreateORVOInstance() noexcept;

  COrvoInstance() noexcept = default;
  ~COrvoInstance() = default;
  static void* operator new(std::size_t bytes) noexcept;

  CLeadTools* leadTools = nullptr;
  COrvoCS* orvoCS = nullptr;
};

#endif  // ORVO_INSTANCE_H
