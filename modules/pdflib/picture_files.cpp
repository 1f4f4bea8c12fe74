#include "pdflib/picture_files.h"

#include <algorithm>

#include "pictures/codecs.h"

namespace modules {
namespace {

struct Type {
  std::string_view name;
  ReaderHandle (*open)(const char* path, Report report);
  bool hasPages = false;
};
constexpr Type kTypes[] = {
    {"jpeg", OpenJpeg}, {"png", OpenPng}, {"tiff", OpenTiff, true}, {"gif", OpenGif}};

}  // namespace

std::optional<CodedPicture> PictureFiles::take(std::string_view type, const std::string& path,
                                               int page, Spool& spool) {
  const auto* const kind = std::ranges::find(kTypes, type, &Type::name);
  Require(kind != std::end(kTypes), kFileFormatNotRead);
  Require(!kind->hasPages || page >= 1, kModuleBadParameter);
  if (!reader_ || !hasPages_ || !kind->hasPages || path != path_) {
    reader_.reset();
    path_ = path;
    hasPages_ = kind->hasPages;
    reader_ = kind->open(path_.c_str(), nullptr);
  }
  if (!reader_->goTo(kind->hasPages ? page : 1)) return std::nullopt;
  return CodePicture(*reader_, path_, spool);
}

}  // namespace modules
