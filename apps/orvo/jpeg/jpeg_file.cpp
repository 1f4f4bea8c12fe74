#include "jpeg_file.h"

#include <algorithm>
#include <new>

#include "jpeg_further.h"
#include "jpeg_head.h"
#include "pictures/exif.h"
#include "pictures/file_handle.h"
#include "pictures/temporary_file.h"

namespace client {
namespace {

bool IsNote(std::uint8_t marker) {
  return (marker >= kJpegApp0 && marker <= 0xEF) || marker == kJpegComment;
}

// Marks without a segment: restarts, which stand in scans, and one for arithmetic coding.
bool StandsAlone(std::uint8_t marker) {
  return (marker >= 0xD0 && marker <= 0xD7) || marker == 0x01;
}

int Number16(View bytes, std::size_t offset) {
  return bytes[offset] << 8 | bytes[offset + 1];
}

// Walks from marker to marker. The parts of a file that ends too soon are no JPEG file.
class Walker {
 public:
  explicit Walker(View bytes) : bytes_(bytes) {}

  // The next marker but restarts, whose code is at the place then. In a scan, zeros that follow
  // 0xFF belong to the data; elsewhere bytes between segments mean nothing.
  std::uint8_t next() {
    for (;; ++at_) {
      at_ = static_cast<std::size_t>(std::find(begin(), bytes_.end(), 0xFF) - bytes_.begin());
      while (at_ < bytes_.size() && bytes_[at_] == 0xFF) ++at_;
      need(1);
      if (bytes_[at_] != 0 && !StandsAlone(bytes_[at_])) return bytes_[at_++];
    }
  }
  // The segment that follows, length included.
  View segment() {
    need(2);
    const auto length = static_cast<std::size_t>(Number16(bytes_, at_));
    if (length < 2) throw NotPossible{"the file is damaged"};
    need(length);
    at_ += length;
    return bytes_.subspan(at_ - length, length);
  }
  // The coded data up to the next marker.
  View scan() {
    const std::size_t start = at_;
    (void)next();
    do --at_;
    while (bytes_[at_] != 0xFF || bytes_[at_ - 1] == 0xFF);
    return bytes_.subspan(start, at_ - start);
  }
  [[nodiscard]] std::size_t place() const { return at_; }

 private:
  [[nodiscard]] View::iterator begin() const {
    return bytes_.begin() + static_cast<std::ptrdiff_t>(at_);
  }
  void need(std::size_t bytes) const {
    if (bytes_.size() - at_ < bytes) throw NotPossible{"the file ends too soon"};
  }

  View bytes_;
  std::size_t at_ = 0;
};

void AppendSegment(Bytes& bytes, std::uint8_t marker, View segment) {
  bytes.insert(bytes.end(), {0xFF, marker});
  Append(bytes, segment);
}

JpegFile::Frame FrameOf(std::uint8_t marker, View segment) {
  constexpr std::size_t kFixedBytes = 8;
  if (segment.size() < kFixedBytes) throw NotPossible{"the file is damaged"};
  return {.marker = marker,
          .bits = segment[2],
          .width = Number16(segment, 5),
          .height = Number16(segment, 3),
          .components = segment[7]};
}

Bytes Joined(const JpegFile& file) {
  Bytes bytes{0xFF, kJpegStart};
  bytes.reserve(file.notes.size() + file.coded.size() + file.trailer.size() + 4);
  Append(bytes, file.notes);
  Append(bytes, file.coded);
  bytes.insert(bytes.end(), {0xFF, kJpegEnd});
  Append(bytes, file.trailer);
  return bytes;
}

std::string ReasonOf(int moduleCode) {
  switch (moduleCode) {
    case kModuleNoMemory:
      return "out of memory";
    case kModuleReadFailed:
      return "the file could not be read";
    case kModuleFileNotOpened:
      return "the file could not be opened";
    default:
      return "the target could not be written";
  }
}

}  // namespace

std::span<std::uint8_t> JpegFile::note(std::uint8_t marker, View name) {
  constexpr std::size_t kHead = 4;  // of a segment: marker and length
  const std::span<std::uint8_t> all(notes);
  for (std::size_t at = 0; at < all.size();) {
    const std::size_t bytes = 2 + static_cast<std::size_t>(Number16(all, at + 2));
    const auto data = all.subspan(at, bytes).subspan(kHead);
    if (all[at + 1] == marker && data.size() > name.size() &&
        std::equal(name.begin(), name.end(), data.begin())) {
      return data.subspan(name.size());
    }
    at += bytes;
  }
  return {};
}

std::span<std::uint8_t> JpegFile::exif() {
  constexpr std::uint8_t kName[] = {'E', 'x', 'i', 'f', 0, 0};
  return note(kJpegApp0 + 1, kName);
}

int JpegFile::orientation() {
  modules::Picture picture;
  modules::ReadExif(exif(), picture);
  return picture.orientation;
}

void JpegFile::setUpright(bool sidesSwapped) {
  modules::SetExifShape(exif(), frame.width, frame.height, sidesSwapped);
  if (!sidesSwapped) return;
  // Version and unit stand before the two densities, of two bytes each.
  constexpr std::uint8_t kName[] = {'J', 'F', 'I', 'F', 0};
  constexpr std::size_t kDensities = 3;
  const auto header = note(kJpegApp0, kName);
  if (header.size() < kDensities + 4) return;
  std::swap_ranges(&header[kDensities], &header[kDensities + 2], &header[kDensities + 2]);
}

void JpegFile::keepFurtherPictures(View before) {
  constexpr std::uint8_t kName[] = {'M', 'P', 'F', 0};
  const auto index = note(kJpegApp0 + 2, kName);
  if (index.empty()) return;
  constexpr std::size_t kMarkers = 2;  // bytes of the start and of the end mark
  const auto was = std::search(before.begin(), before.end(), index.begin(), index.end());
  MoveFurtherPictures(index, {static_cast<std::size_t>(was - before.begin()), end},
                      {kMarkers + static_cast<std::size_t>(index.data() - notes.data()),
                       kMarkers + notes.size() + coded.size() + kMarkers});
}

JpegFile TakenApart(View bytes) {
  if (bytes.size() < 2 || bytes[0] != 0xFF || bytes[1] != kJpegStart) {
    throw NotPossible{"the file is no JPEG"};
  }
  Walker walker(bytes);
  (void)walker.next();
  JpegFile file;
  for (std::uint8_t marker = walker.next(); marker != kJpegEnd; marker = walker.next()) {
    const View segment = walker.segment();
    AppendSegment(IsNote(marker) ? file.notes : file.coded, marker, segment);
    if (BeginsJpegFrame(marker)) file.frame = FrameOf(marker, segment);
    if (marker == kJpegScan) Append(file.coded, walker.scan());
  }
  file.end = walker.place();
  Append(file.trailer, bytes.subspan(file.end));
  return file;
}

Outcome ChangeFile(const std::string& source, const std::string& target, const ChangeJpeg& change) {
  using Kind = Outcome::Kind;
  try {
    const Bytes bytes = ReadBytes(source);
    JpegFile file = TakenApart(bytes);
    change(bytes, file);
    file.keepFurtherPictures(bytes);
    WriteBytes(target, Joined(file));
    return {};
  } catch (const NotPossible& obstacle) {
    return {Kind::kNotPossible, obstacle.reason};
  } catch (const modules::ModuleError& error) {
    return {Kind::kFailed, ReasonOf(error.code)};
  } catch (const std::bad_alloc&) {
    return {Kind::kFailed, ReasonOf(kModuleNoMemory)};
  }
}

Bytes ReadBytes(const std::string& path) {
  const modules::FileHandle file = modules::OpenToRead(path.c_str());
  Bytes bytes(modules::FileSize(path.c_str()));
  modules::Require(std::fread(bytes.data(), 1, bytes.size(), file.get()) == bytes.size(),
                   kModuleReadFailed);
  return bytes;
}

void WriteBytes(const std::string& path, const Bytes& bytes) {
  modules::TemporaryFile beside(path);
  modules::Require(beside, kModuleWriteFailed);
  modules::WriteFile(beside.path().c_str(), [&](std::FILE* file) {
    (void)std::fwrite(bytes.data(), 1, bytes.size(), file);
  });
  modules::Require(beside.moveTo(path), kModuleWriteFailed);
}

}  // namespace client
