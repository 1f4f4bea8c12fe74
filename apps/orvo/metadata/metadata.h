// What a picture file holds beside the picture goes with it to the result.
#ifndef APPS_ORVO_METADATA_METADATA_H
#define APPS_ORVO_METADATA_METADATA_H

#include <string>
#include <vector>

#include "file_access.h"
#include "tag_directory.h"

namespace client {

// What is taken off on purpose.
enum class Strip { kNothing, kAllButProfile, kAll };

struct MetadataRequest {
  std::string source{};
  int page = 1;  // of a TIFF file
  // Finished, in the format that it is to have. Its pixels are upright.
  std::string result{};
  int resultPage = 1;  // of a TIFF file
  // Of walks through the pages of TIFF files; null for single pages.
  PagePlace* sourcePlace = nullptr;
  PagePlace* resultPlace = nullptr;
  Strip strip = Strip::kNothing;
  int width = 0;   // of the result as shown, in pixels
  int height = 0;  // of the result as shown, in pixels
  // Colours became others, so that the profile no longer explains them.
  bool colorsChanged = false;
  // Its pixels were brought to sRGB, so that nothing has to explain them.
  bool inSrgb = false;
  // The picture was resampled, or turned with unlike resolutions across and down: what the file
  // says is the result's own, told here too; 0 when it has none.
  bool newResolution = false;
  double xDotsPerInch = 0;
  double yDotsPerInch = 0;
};

// Tells what could not be kept, in words, a line each: "the EXIF data: PCX cannot hold it". Throws
// MetadataFault when the result could not be written anew; then it is as it was.
std::vector<std::string> KeepMetadata(const MetadataRequest& request);

// What explains the colours of a file's page where they are not sRGB, or may not be: its profile,
// or one for what it tells otherwise. Empty when it tells nothing.
std::vector<std::uint8_t> ReadColorProfile(const std::string& path, int page,
                                           PagePlace* last = nullptr);

// What goes into a document with a picture.
struct DocumentMetadata {
  Bytes profile{};
  int components = 0;  // of the colours that it explains: 1, 3 or 4; 0 for others, and for none
  std::string xmp{};
  std::vector<std::string> lost{};  // as KeepMetadata tells it

  // Tells the profile among what is lost, when it is for other colours than the picture's.
  void fitTo(int pictureComponents);
};
// As it was: turned and coloured as in its file.
enum class PictureIs { kUpright, kAsItWas };
// Of the request, what tells of the result counts for upright pictures alone.
DocumentMetadata TakeForDocument(const MetadataRequest& request, PictureIs picture);

// Wipes out the preview of a JPEG file whose picture was changed where it lies; nothing else
// changes. Throws MetadataFault when the file could not be written anew.
void WipeJpegPreview(const std::string& path);

}  // namespace client

#endif  // APPS_ORVO_METADATA_METADATA_H
