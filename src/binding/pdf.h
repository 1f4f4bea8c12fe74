// The binding's own answers about PDF documents. Callers of the toolkit see only done or failed.
#ifndef ORVO_BINDING_PDF_H
#define ORVO_BINDING_PDF_H

namespace orvo {

enum PdfCode : int {
  kPdfDone = 0,
  kPdfNoSource = 6,
  kPdfNotWritten = 100,     // the target cannot be opened, or its document could not be written
  kPdfNoPicture = 103,      // the source's first page cannot be opened
  kPdfNoPictureType = 104,  // of the source's extension
  kPdfNoModule = 109,
};

}  // namespace orvo

#endif  // ORVO_BINDING_PDF_H
