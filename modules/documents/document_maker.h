// Makes a PDF document of pictures, a page each. It lies in a library of its own, which is loaded
// when the first document is made: who makes none does not wait for what documents need.
#ifndef MODULES_DOCUMENTS_DOCUMENT_MAKER_H
#define MODULES_DOCUMENTS_DOCUMENT_MAKER_H

#include <string_view>

#include "common/status.h"

namespace modules {

// What goes into a page with its picture.
struct PageExtras {
  // An ICC profile for colours of so many components; left out of a picture of others.
  std::string_view profile = {};
  int profileComponents = 0;
  std::string_view xmp = {};            // a packet
  RGBQUAD ground = {255, 255, 255, 0};  // what lies under opacity
};

// What became of the picture.
struct PageFacts {
  bool isFromFile = false;   // its data are the file's own
  bool showsGround = false;  // it has opacity, and was laid on the ground
  int narrowedFrom = 0;      // bits of a sample in the file, when the page has 8; else 0
  int components = 0;        // of its colours: 1, 3 or 4
};

// All answer a code of the modules; after a failure the document is of no use.
class DocumentMaker {
 public:
  virtual ~DocumentMaker() = default;
  // text: in UTF-8.
  virtual int setInfo(const char* key, const char* text) = 0;
  // Adds a page as large as the picture's resolution makes it: a pixel is a point when there is
  // none. type: "jpeg", "png", "tiff" or "gif"; page: of a TIFF file, from 1. Data that documents
  // can hold go in as they are, all else is coded without loss.
  virtual int addFile(std::string_view type, const char* path, int page, const PageExtras& extras,
                      PageFacts& facts) = 0;
  virtual int addBitmap(DibHandle bitmap, const PageExtras& extras, PageFacts& facts) = 0;
  virtual int write(const char* path) = 0;
};

}  // namespace modules

extern "C" {
// An empty document that dates from now. Coded pictures wait beside `neighbour`, a path. Null when
// no file can be made there. A null report is told nothing.
ORVO_MODULE_API modules::DocumentMaker* NewDocumentMaker(const char* neighbour,
                                                         modules::Report report) noexcept;
}

#endif  // MODULES_DOCUMENTS_DOCUMENT_MAKER_H
