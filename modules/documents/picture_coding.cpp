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

// A tone as it shows on the ground; alpha 0 is clear, 255 covers.
std::uint8_t OnGround(std::uint8_t tone, std::uint8_t alpha, std::uint8_t ground) {
  return static_cast<std::uint8_t>((tone * alpha + ground * (255 - alpha) + 127) / 255);
}

void LayPaletteOn(const RGBQUAD& ground, CodedPicture& coded) {
  if (!coded.picture.hasAlpha) return;
  for (RGBQUAD& entry : coded.picture.palette) {
    const std::uint8_t alpha = entry.rgbReserved;
    coded.showsGround = coded.showsGround || alpha < 255;
    entry = {OnGround(entry.rgbBlue, alpha, ground.rgbBlue),
             OnGround(entry.rgbGreen, alpha, ground.rgbGreen),
             OnGround(entry.rgbRed, alpha, ground.rgbRed), 255};
  }
}

constexpr int kWide = 16;

void TakeDifferences(std::vector<std::uint8_t>& row, std::size_t components) {
  for (std::size_t i = row.size(); i-- > components;) {
    row[i] = static_cast<std::uint8_t>(row[i] - row[i - components]);
  }
}

// Byte by byte behind the number of that filter, which more programs undo than differences of 16
// bits.
void FilterWide(std::vector<std::uint8_t>& row, std::size_t components) {
  constexpr std::uint8_t kSub = 1;
  TakeDifferences(row, 2 * components);
  row.insert(row.begin(), kSub);
}

Spool::Range Deflate(DocumentRows& rows, Coding coding, Spool& spool) {
  const std::uint64_t start = spool.size();
  Pl_Function pipe("spool", nullptr, [&](const unsigned char* bytes, std::size_t count) {
    spool.append(bytes, count);
  });
  Pl_Flate deflate("deflate", &pipe, Pl_Flate::a_deflate);
  for (int y = 0; y < rows.height(); ++y) {
    std::vector<std::uint8_t>& row = rows.next();
    const auto components = static_cast<std::size_t>(rows.components());
    if (coding == Coding::kFlateDifferences) TakeDifferences(row, components);
    if (coding == Coding::kFlateFilters) FilterWide(row, components);
    deflate.write(row.data(), row.size());
  }
  deflate.finish();
  return spool.rangeSince(start);
}

}  // namespace

DocumentRows::DocumentRows(PictureReader& reader, const RGBQUAD& ground)
    : reader_(reader),
      picture_(reader.picture()),
      ground_(ground),
      components_(ComponentsOf(picture_)) {}

std::vector<std::uint8_t>& DocumentRows::next() {
  row_.resize(picture_.rowBytes());
  reader_.readRow(row_.data());
  if (picture_.samples > 1 && picture_.bits == 8 && !picture_.hasInks) convert();
  return row_;
}

void DocumentRows::convert() {
  const auto step = static_cast<std::size_t>(picture_.samples);
  std::uint8_t* out = row_.data();
  for (std::size_t x = 0; x < static_cast<std::size_t>(picture_.width); ++x) {
    const std::uint8_t* const from = row_.data() + step * x;
    const std::uint8_t alpha = step == 4 ? from[3] : 255;
    showsGround_ = showsGround_ || alpha < 255;
    const std::uint8_t tones[] = {OnGround(from[2], alpha, ground_.rgbRed),
                                  OnGround(from[1], alpha, ground_.rgbGreen),
                                  OnGround(from[0], alpha, ground_.rgbBlue)};
    out = std::copy_n(tones, components_, out);
  }
  row_.resize(static_cast<std::size_t>(out - row_.data()));
}

namespace {

std::optional<CodedParts> PartsOf(PictureReader& reader, const CodingRules& rules) {
  if (!rules.takesParts && !reader.codedStretch()) return std::nullopt;
  auto parts = reader.codedParts();
  if (!parts) return parts;
  // Deflated black and white is smaller in group 4.
  if (parts->coding == Coding::kFlateFilters && parts->bits == 1) return std::nullopt;
  Require(std::ranges::any_of(parts->stretches, [](const auto& part) { return part.bytes > 0; }),
          kFileFormatDamaged);
  return parts;
}

Spool::Range TakeParts(const CodedParts& parts, const std::string& path, Spool& spool) {
  const std::uint64_t start = spool.size();
  spool.append(parts.head.data(), parts.head.size());
  for (const auto& stretch : parts.stretches) (void)spool.take(path, stretch.start, stretch.bytes);
  return spool.rangeSince(start);
}

}  // namespace

CodedPicture CodePicture(PictureReader& reader, const std::string& path, const CodingRules& rules,
                         Spool& spool) {
  if (rules.takesParts) reader.keepSixteenBits();
  reader.start();
  const Picture& picture = reader.picture();
  DocumentRows rows(reader, rules.ground);
  CodedPicture coded{.picture = picture, .bits = picture.bits, .components = rows.components()};
  if (const auto parts = PartsOf(reader, rules)) {
    for (int y = 0; y < rows.height(); ++y) (void)rows.next();
    coded.coding = parts->coding;
    coded.bits = parts->bits;
    coded.data = TakeParts(*parts, path, spool);
    coded.isFromFile = true;
  } else if (picture.bits == 1) {
    coded.coding = Coding::kFax;
    coded.data = EncodeFax(rows, spool);
  } else {
    const bool isWide = picture.bits == kWide && rules.takesParts;
    // Photographs shrink by a third more as differences; palette indexes and few bits would grow.
    const bool differences = picture.bits == 8 && picture.palette.empty();
    coded.coding = isWide        ? Coding::kFlateFilters
                   : differences ? Coding::kFlateDifferences
                                 : Coding::kFlate;
    coded.data = Deflate(rows, coded.coding, spool);
  }
  Require(reader.isWhole(), kFileFormatDamaged);
  coded.showsGround = rows.showsGround();
  LayPaletteOn(rules.ground, coded);
  return coded;
}

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
                                               int page, Spool& spool, const CodingRules& rules) {
  const auto* const kind = std::ranges::find(kTypes, type, &Type::name);
  Require(kind != std::end(kTypes), kFileFormatNotRead);
  Require(!kind->hasPages || page >= 1, kModuleBadParameter);
  if (!reader_ || !hasPages_ || !kind->hasPages || path != path_) {
    reader_.reset();
    path_ = path;
    hasPages_ = kind->hasPages;
    reader_ = kind->open(path_.c_str(), report_);
  }
  if (!reader_->goTo(kind->hasPages ? page : 1)) return std::nullopt;
  return CodePicture(*reader_, path_, rules, spool);
}

}  // namespace modules
