// Pictures coded as a document holds them.
#ifndef MODULES_PDFLIB_PICTURE_CODING_H
#define MODULES_PDFLIB_PICTURE_CODING_H

#include "pdflib/picture.h"
#include "pdflib/spool.h"

namespace modules {

enum class Coding {
  kFlate,
  kFlateDifferences,  // each component as the difference from its left neighbour
  kFax,               // group 4; coded black is bit 1
  kJpeg,
};

struct CodedPicture {
  Picture picture;
  Coding coding = Coding::kFlate;
  Spool::Range data = {};
  bool jpegIsRgb = false;  // the components are red, green and blue themselves
};

// Codes the rows without loss: group 4 for 1 bit, else deflate.
CodedPicture CodeRows(PictureReader& reader, Spool& spool);

// Codes 1-bit rows as one stretch of group 4 data.
Spool::Range EncodeFax(PictureReader& reader, Spool& spool);

}  // namespace modules

#endif  // MODULES_PDFLIB_PICTURE_CODING_H
