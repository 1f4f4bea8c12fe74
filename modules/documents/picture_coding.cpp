#include "documents/picture_coding.h"

#include <algorithm>
#include <qpdf/Pl_Flate.hh>
#include <qpdf/Pl_Function.hh>

#include "pictures/codecs.h"

namespace modules {
namespace {

int ComponentsOf(const Picture& picture) {
  if (picture.samples == 1 || picture.hasInks) return picture.samples;
  return picture.isGray ? 1 : 3;
}

// Photographs shrink by a third more as differences; palette indexes and few bits would grow.
bool GainsByDifferences(const Picture& picture) {
  return picture.bits == 8 && picture.palette.empty();
}

void TakeDifferences(std::vector<std::uint8_t>& row, std::size_t components) {
  for (std::size_t i = row.size(); i-- > components;) {
    row[i] = static_cast<std::uint8_t>(row[i] - row[i - components]);
  }
}

Spool::Range Deflate(DocumentRows& rows, bool differences, Spool& spool) {
  const std::uint64_t start = spool.size();
  Pl_Function pipe("spool", nullptr, [&](const unsigned char* bytes, std::size_t count) {
    spool.append(bytes, count);
  });
  Pl_Flate deflate("deflate", &pipe, Pl_Flate::a_deflate);
  for (int y = 0; y < rows.height(); ++y) {
    std::vector<std::uint8_t>& row = rows.next();
    if (differences) TakeDifferences(row, static_cast<std::size_t>(rows.components()));
    deflate.write(row.data(), row.size());
  }
  deflate.finish();
  return spool.rangeSince(start);
}

}  // namespace

DocumentRows::DocumentRows(PictureReader& reader)
    : reader_(reader), picture_(reader.picture()), components_(ComponentsOf(picture_)) {}

std::vector<std::uint8_t>& DocumentRows::next() {
  row_.resize(picture_.rowBytes());
  reader_.readRow(row_.data());
  if (picture_.samples > 1 && !picture_.hasInks) convert();
  return row_;
}

void DocumentRows::convert() {
  const auto step = static_cast<std::size_t>(picture_.samples);
  std::uint8_t* out = row_.data();
  for (std::size_t x = 0; x < static_cast<std::size_t>(picture_.width); ++x) {
    const std::uint8_t* const from = row_.data() + step * x;
    const std::uint8_t alpha = step == 4 ? from[3] : 255;
    const std::uint8_t tones[] = {OnWhite(from[2], alpha), OnWhite(from[1], alpha),
                                  OnWhite(from[0], alpha)};
    out = std::copy_n(tones, components_, out);
  }
  row_.resize(static_cast<std::size_t>(out - row_.data()));
}

namespace {

// What is passed through is decoded all the same: damage is met here and not in the document.
CodedPicture CodePicture(PictureReader& reader, const std::string& path, Spool& spool) {
  reader.start();
  const Picture& picture = reader.picture();
  DocumentRows rows(reader);
  CodedPicture coded{.picture = picture, .components = rows.components()};
  if (const auto stretch = reader.codedStretch()) {
    Require(stretch->bytes > 0, kFileFormatDamaged);
    for (int y = 0; y < rows.height(); ++y) (void)rows.next();
    coded.coding = stretch->coding;
    coded.data = spool.take(path, stretch->start, stretch->bytes);
  } else if (picture.bits == 1) {
    coded.coding = Coding::kFax;
    coded.data = EncodeFax(rows, spool);
  } else {
    const bool differences = GainsByDifferences(picture);
    coded.coding = differences ? Coding::kFlateDifferences : Coding::kFlate;
    coded.data = Deflate(rows, differences, spool);
  }
  Require(reader.isWhole(), kFileFormatDamaged);
  return coded;
}

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
