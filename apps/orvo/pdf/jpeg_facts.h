// What a JPEG file says of itself, where a document may say otherwise.
#ifndef APPS_ORVO_PDF_JPEG_FACTS_H
#define APPS_ORVO_PDF_JPEG_FACTS_H

#include <optional>
#include <string>

namespace client {

struct JpegFacts {
  int width = 0;   // pixels
  int height = 0;  // pixels
  int components = 0;
  bool inverted = false;     // the highest value of an ink is none of it
  bool mixesColors = false;  // three components are a tone and tints
};

// Nothing for what is no JPEG file.
std::optional<JpegFacts> ReadJpegFacts(const std::string& path);

}  // namespace client

#endif  // APPS_ORVO_PDF_JPEG_FACTS_H
