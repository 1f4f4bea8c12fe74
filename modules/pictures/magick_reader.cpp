// PCX, DCX, Sun raster, PICT, Photo CD, Windows metafiles and WordPerfect graphics by
// GraphicsMagick.
#include "pictures/codecs.h"
#include "pictures/file_handle.h"
#include "pictures/magick_kinds.h"
#include "pictures/magick_pixels.h"
#include "pictures/magick_session.h"

namespace modules {
namespace {

class MagickReader : public PictureReader {
 public:
  MagickReader(const MagickKind& kind, const char* path, Report report)
      : PictureReader(path, report),
        kind_(kind),
        progress_(MagickProgress::Order::kLibraryFirst, report) {}

  bool readHeader(int page) override {
    bytes_ = ReadWhole(path_);
    Require(kind_.isSound == nullptr || kind_.isSound(bytes_), kFileFormatDamaged);
    if (page < 1 || page > pageCount()) return false;
    page_ = page;
    info_ = NewMagickInfo(kind_.magick);
    if (pageCount() > 1) {
      info_->subimage = static_cast<unsigned long>(page - 1);
      info_->subrange = 1;
    }
    images_ = DecodeMagick(*info_, bytes_, nullptr);
    describe();
    return true;
  }

  int pageCount() override { return kind_.pages == nullptr ? 1 : kind_.pages(bytes_); }

  // The library may know more of a picture once it has its pixels.
  void start() override {
    images_ = DecodeMagick(*info_, bytes_, &progress_);
    describe();
  }

  void readRow(std::uint8_t* row) override {
    CopyLine(image(), next_++, picture_.depth(), row);
    Require(progress_.reportRows(static_cast<int>(next_), picture_.height), kModuleAborted);
  }

 private:
  // Of the images that came: those before a later page come with it.
  [[nodiscard]] const Image& image() const {
    return page_ > 1 ? *Magick().GetLastImageInList(images_.get()) : *images_;
  }

  [[nodiscard]] int depth() const {
    const int own = kind_.depth == nullptr ? 0 : kind_.depth(bytes_);
    if (own > 8) return own;
    for (const int depth : {1, 4, 8}) {
      if (depth >= own && FitsPalette(image(), depth)) return depth;
    }
    return 24;
  }

  void describe() {
    picture_ = Picture{.format = kind_.format};
    if (kind_.compression != nullptr) picture_.compression = kind_.compression(bytes_, page_);
    picture_.width = static_cast<int>(image().columns);
    picture_.height = static_cast<int>(image().rows);
    if (kind_.resolution != nullptr) {
      const FileResolution resolution = kind_.resolution(bytes_, page_);
      picture_.xPixelsPerMetre = orvo::PixelsPerMetre(resolution.x);
      picture_.yPixelsPerMetre = orvo::PixelsPerMetre(resolution.y);
    }
    picture_.setDepth(depth());
    if (picture_.samples == 1) picture_.palette = PaletteOf(image());
  }

  const MagickKind& kind_;
  MagickProgress progress_;
  std::vector<std::uint8_t> bytes_;  // of the file
  MagickImageInfo info_;
  MagickImage images_;
  int page_ = 1;
  long next_ = 0;
};

}  // namespace

ReaderHandle OpenRare(const MagickKind& kind, const char* path, Report report) {
  return std::make_unique<MagickReader>(kind, path, report);
}

}  // namespace modules
