// Pictures out of files, coded for a document.
#ifndef MODULES_PDFLIB_PICTURE_FILES_H
#define MODULES_PDFLIB_PICTURE_FILES_H

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "pdflib/picture_coding.h"

namespace modules {

// Takes a picture out of a file of a type: "jpeg", "tiff", "png" or "gif". page counts from 1 and
// is for TIFF; of a GIF the first frame is taken. Nothing when the TIFF file has fewer pages.
// Throws UnreadablePicture when the type is another or the file cannot be read.
std::optional<CodedPicture> TakePicture(std::string_view type, const std::string& path, int page,
                                        Spool& spool);

// One for each type. A JPEG file goes into the spool as it is, when readers of documents know its
// kind of JPEG; a TIFF page in group 4 likewise.
CodedPicture TakeJpeg(const std::string& path, Spool& spool);
std::optional<CodedPicture> TakeTiffPage(const std::string& path, int page, Spool& spool);
std::unique_ptr<PictureReader> OpenPng(const std::string& path);
std::unique_ptr<PictureReader> OpenGif(const std::string& path);

}  // namespace modules

#endif  // MODULES_PDFLIB_PICTURE_FILES_H
