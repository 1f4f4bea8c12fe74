#include "pdflib/picture_files.h"

namespace modules {

std::optional<CodedPicture> TakePicture(std::string_view type, const std::string& path, int page,
                                        Spool& spool) {
  if (type == "jpeg") return TakeJpeg(path, spool);
  if (type == "tiff") return TakeTiffPage(path, page, spool);
  if (type == "png") return CodeRows(*OpenPng(path), spool);
  if (type == "gif") return CodeRows(*OpenGif(path), spool);
  throw UnreadablePicture("unknown picture type");
}

}  // namespace modules
