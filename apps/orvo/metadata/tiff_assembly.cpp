#include "tiff_assembly.h"

#include <algorithm>
#include <array>
#include <filesystem>

#include "file_access.h"

namespace client {
namespace {

constexpr std::uint16_t kLowerDirectories = 330;
constexpr std::array<std::uint16_t, 2> kFreePlaces{288, 289};
// Of an old form of JPEG: they tell places in the file.
constexpr std::array<std::uint16_t, 5> kPlacesOfJpeg{513, 514, 519, 520, 521};

constexpr const char* kNotMoved = "a page that would stay cannot be moved";

struct DataTags {
  std::uint16_t offsets;
  std::uint16_t counts;
};
constexpr std::array<DataTags, 2> kDataTags{{{273, 279}, {324, 325}}};  // strips, tiles

std::vector<std::uint64_t> NumbersOf(const Tag& tag, ByteOrder order) {
  const std::size_t unit = BytesOfType(tag.type);
  std::vector<std::uint64_t> numbers;
  for (std::size_t at = 0; at + unit <= tag.value.size(); at += unit) {
    numbers.push_back(NumberIn(View(tag.value).subspan(at), unit, order));
  }
  return numbers;
}

TagDirectory ReadAll(TiffPages& source, std::uint64_t at) {
  bool isWhole = true;
  TagDirectory tags = ReadTags(
      source.file(), source.form(), at, [](std::uint16_t) { return true; }, isWhole);
  const bool tellsPlaces = std::any_of(kPlacesOfJpeg.begin(), kPlacesOfJpeg.end(),
                                       [&](std::uint16_t id) { return tags.tags.contains(id); });
  if (!isWhole || tellsPlaces) throw MetadataFault(kNotMoved);
  for (const std::uint16_t id : kFreePlaces) tags.tags.erase(id);
  return tags;
}

}  // namespace

TiffPages::TiffPages(const std::string& path)
    : file_(path, std::ios::binary), bytes_(std::filesystem::file_size(path)) {
  const auto form = ReadTagForm(file_);
  if (!form) throw MetadataFault("no TIFF file");
  form_ = *form;
}

std::uint64_t TiffPages::find(int page) {
  const auto place = FindPage(file_, form_, page, place_);
  if (!place) throw MetadataFault("the file has no page " + std::to_string(page));
  return NumberAt(file_, form_, *place, form_.offsetBytes());
}

TiffAssembly::TiffAssembly(const std::string& path, TagForm form)
    : file_(path, std::ios::binary | std::ios::trunc), form_(form) {
  constexpr std::uint64_t kTiff = 42;
  constexpr std::uint64_t kBigTiff = 43;
  Bytes head(form.firstAt() + form.offsetBytes());
  const std::span<std::uint8_t> all(head);
  head[0] = head[1] = form.order == ByteOrder::kBig ? 'M' : 'I';
  PutNumber(all.subspan(2, 2), form.isBig ? kBigTiff : kTiff, form.order);
  if (form.isBig) PutNumber(all.subspan(4, 2), form.offsetBytes(), form.order);
  nextAt_ = form.firstAt();
  (void)append(head);
}

void TiffAssembly::add(TiffPages& source, int page) {
  const Placed placed = copyDirectory(source, source.find(page), 0);
  Bytes position(form_.offsetBytes());
  PutNumber(position, placed.at, form_.order);
  write(nextAt_, position);
  nextAt_ = placed.nextAt;
}

void TiffAssembly::finish() {
  file_.close();
  if (!file_) throw MetadataFault("the file could not be written");
}

// First what a directory leads to, then the directory.
TiffAssembly::Placed TiffAssembly::copyDirectory(TiffPages& source, std::uint64_t from, int depth) {
  TagDirectory tags = ReadAll(source, from);
  std::map<std::uint16_t, Tag> moved;
  for (const DataTags& row : kDataTags) {
    const auto offsets = tags.tags.find(row.offsets);
    if (offsets == tags.tags.end()) continue;
    moved[row.offsets] = copyData(source, offsets->second, tags.tags[row.counts]);
  }
  if (const auto lower = tags.tags.find(kLowerDirectories); lower != tags.tags.end()) {
    moved[kLowerDirectories] = copyLower(source, lower->second, depth);
  }
  if (source.form().order != form_.order) TurnByteOrder(tags);
  for (auto& [id, tag] : moved) tags.tags[id] = std::move(tag);
  const std::uint64_t at = end_ + end_ % 2;
  const auto bytes = WriteTags(tags, form_, at, 0);
  if (!bytes) throw MetadataFault("the TIFF file would become longer than 4 GiB");
  const std::size_t entries = tags.tags.size() + tags.below.size();
  return {append(*bytes), at + form_.countBytes() + entries * form_.entryBytes()};
}

Tag TiffAssembly::copyData(TiffPages& source, const Tag& offsets, const Tag& counts) {
  const std::vector<std::uint64_t> places = NumbersOf(offsets, source.form().order);
  const std::vector<std::uint64_t> lengths = NumbersOf(counts, source.form().order);
  if (places.size() != lengths.size()) throw MetadataFault(kNotMoved);
  std::vector<std::uint64_t> newPlaces;
  std::uint64_t left = source.bytes();  // a page cannot hold more
  for (std::size_t i = 0; i < places.size(); ++i) {
    if (lengths[i] > left) throw MetadataFault(kNotMoved);
    left -= lengths[i];
    // What is not there stays so: some writers leave empty strips out.
    newPlaces.push_back(lengths[i] == 0 ? 0 : copyBytes(source, places[i], lengths[i]));
  }
  return offsetTag(newPlaces);
}

Tag TiffAssembly::copyLower(TiffPages& source, const Tag& offsets, int depth) {
  constexpr int kMostDepth = 2;
  constexpr std::size_t kMost = 64;
  std::vector<std::uint64_t> places = NumbersOf(offsets, source.form().order);
  if (depth == kMostDepth || places.size() > kMost) throw MetadataFault(kNotMoved);
  for (std::uint64_t& place : places) place = copyDirectory(source, place, depth + 1).at;
  return offsetTag(places);
}

std::uint64_t TiffAssembly::copyBytes(TiffPages& source, std::uint64_t from, std::uint64_t count) {
  constexpr std::uint64_t kPiece = std::uint64_t{1} << 20U;
  const std::uint64_t start = end_ + end_ % 2;
  Bytes piece;
  source.file().clear();
  source.file().seekg(static_cast<std::streamoff>(from));
  for (; count > 0; count -= piece.size()) {
    piece.resize(std::min(count, kPiece));
    if (!source.file().read(reinterpret_cast<char*>(piece.data()),
                            static_cast<std::streamsize>(piece.size()))) {
      throw MetadataFault(kNotMoved);
    }
    (void)append(piece);
  }
  return start;
}

Tag TiffAssembly::offsetTag(const std::vector<std::uint64_t>& offsets) const {
  Tag tag{form_.isBig ? kTypeBigLong : kTypeLong, {}};
  for (const std::uint64_t offset : offsets) {
    tag.value.resize(tag.value.size() + form_.offsetBytes());
    PutNumber(std::span(tag.value).last(form_.offsetBytes()), offset, form_.order);
  }
  return tag;
}

// At an even place.
std::uint64_t TiffAssembly::append(View bytes) {
  end_ += end_ % 2;
  const std::uint64_t at = end_;
  write(at, bytes);
  end_ += bytes.size();
  return at;
}

void TiffAssembly::write(std::uint64_t at, View bytes) {
  file_.seekp(static_cast<std::streamoff>(at));
  file_.write(reinterpret_cast<const char*>(bytes.data()),
              static_cast<std::streamsize>(bytes.size()));
  if (!file_) throw MetadataFault("the file could not be written");
}

}  // namespace client
