// What the instructions of a page draw, as far as that is one picture.
#ifndef APPS_ORVO_PDF_PAGE_SCAN_H
#define APPS_ORVO_PDF_PAGE_SCAN_H

#include <qpdf/QPDFObjectHandle.hh>
#include <string>
#include <vector>

#include "pdf_file.h"
#include "placement.h"

namespace client {

struct DrawnPicture {
  QPDFObjectHandle image;
  // The way to it from the page's resources: forms, then the picture itself.
  std::vector<std::string> names;
  Matrix place;           // of its square on the page, before that is turned; in units of the page
  Box box;                // of the page that is shown; in its units
  Matrix turn;            // of the page
  double unit = 1;        // in points
  bool inksBlack = true;  // a stencil would be
  bool hasHiddenText = false;
};

// Throws PdfFault when the page shows anything else, or only a part of the picture.
DrawnPicture ScanPage(QPDFObjectHandle page);

}  // namespace client

#endif  // APPS_ORVO_PDF_PAGE_SCAN_H
