// Coded pictures as objects of a PDF document.
#ifndef MODULES_DOCUMENTS_IMAGE_OBJECT_H
#define MODULES_DOCUMENTS_IMAGE_OBJECT_H

#include <memory>
#include <qpdf/QPDF.hh>
#include <qpdf/QPDFObjectHandle.hh>

#include "documents/picture_coding.h"

namespace modules {

// A stream whose bytes leave the spool when the document is written.
QPDFObjectHandle MakeStream(QPDF& pdf, const std::shared_ptr<Spool>& spool, Spool::Range data,
                            const QPDFObjectHandle& filter = QPDFObjectHandle::newNull(),
                            const QPDFObjectHandle& parameters = QPDFObjectHandle::newNull());

// profile: a stream that explains the colours; null for none.
QPDFObjectHandle MakeImageObject(QPDF& pdf, const CodedPicture& coded,
                                 const std::shared_ptr<Spool>& spool,
                                 const QPDFObjectHandle* profile = nullptr);

}  // namespace modules

#endif  // MODULES_DOCUMENTS_IMAGE_OBJECT_H
