// Coded pictures as objects of a PDF document.
#ifndef PROVIDERS_PDFLIB_IMAGE_OBJECT_H
#define PROVIDERS_PDFLIB_IMAGE_OBJECT_H

#include <memory>
#include <qpdf/QPDF.hh>
#include <qpdf/QPDFObjectHandle.hh>

#include "pdflib/picture_coding.h"

namespace provider {

// The image object; its bytes leave the spool when the document is written.
QPDFObjectHandle MakeImageObject(QPDF& pdf, const CodedPicture& coded,
                                 const std::shared_ptr<Spool>& spool);

}  // namespace provider

#endif  // PROVIDERS_PDFLIB_IMAGE_OBJECT_H
