// Coded pictures as objects of a PDF document.
#ifndef MODULES_DOCUMENTS_IMAGE_OBJECT_H
#define MODULES_DOCUMENTS_IMAGE_OBJECT_H

#include <memory>
#include <qpdf/QPDF.hh>
#include <qpdf/QPDFObjectHandle.hh>

#include "documents/picture_coding.h"

namespace modules {

// The image object; its bytes leave the spool when the document is written.
QPDFObjectHandle MakeImageObject(QPDF& pdf, const CodedPicture& coded,
                                 const std::shared_ptr<Spool>& spool);

}  // namespace modules

#endif  // MODULES_DOCUMENTS_IMAGE_OBJECT_H
