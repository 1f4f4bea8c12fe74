// A picture of a document as a file of its own.
#ifndef APPS_ORVO_PDF_IMAGE_FILE_H
#define APPS_ORVO_PDF_IMAGE_FILE_H

#include <string>

#include "image_facts.h"
#include "pdf_file.h"

namespace client {

// Writes the stream of a JPEG picture as it is. False when the file alone would show something
// else.
bool WriteJpegFile(const QPDFObjectHandle& image, const ImageFacts& facts, const std::string& path);

// Writes a TIFF file of any picture, without loss; kBesides writes a pixel in its place. The
// page tells orientation and resolution.
void WriteTiffFile(const QPDFObjectHandle& image, const ImageFacts& facts, const PdfPage& page,
                   PdfFile::Part part, const std::string& path);

// The profile of the colours; empty when there is none, or none that can be read.
std::string ProfileOf(const ImageFacts& facts);

}  // namespace client

#endif  // APPS_ORVO_PDF_IMAGE_FILE_H
