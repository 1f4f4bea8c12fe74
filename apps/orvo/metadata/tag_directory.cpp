#include "tag_directory.h"

#include <algorithm>
#include <array>

#include "maker_note.h"

namespace client {
namespace {

constexpr std::uint64_t kMostTagBytes = 64U << 20U;
constexpr std::uint64_t kMostEntries = 65535;
constexpr int kMostPages = 65535;

bool LeadsBelow(std::uint16_t tag) {
  return tag == kTagExif || tag == kTagGps || tag == kTagInterop;
}

// Nothing behind the end of the file.
std::optional<Bytes> BytesAt(std::istream& file, std::uint64_t at, std::uint64_t count) {
  Bytes bytes(count);
  file.clear();
  file.seekg(static_cast<std::streamoff>(at));
  if (!file.read(reinterpret_cast<char*>(bytes.data()), static_cast<std::streamsize>(count))) {
    return std::nullopt;
  }
  return bytes;
}

class Reader {
 public:
  Reader(std::istream& file, TagForm form, const std::function<bool(std::uint16_t)>& wanted)
      : file_(file), form_(form), wanted_(wanted) {}

  TagDirectory read(std::uint64_t at, int depth) {
    TagDirectory directory;
    const std::uint64_t entries = NumberAt(file_, form_, at, form_.countBytes());
    const auto table = BytesAt(file_, at + form_.countBytes(),
                               std::min(entries, kMostEntries) * form_.entryBytes());
    if (!table || entries > kMostEntries) {
      isWhole_ = false;
      return directory;
    }
    for (std::size_t i = 0; i < entries; ++i) {
      take(View(*table).subspan(i * form_.entryBytes(), form_.entryBytes()), directory, depth);
    }
    return directory;
  }
  [[nodiscard]] bool isWhole() const { return isWhole_; }

 private:
  [[nodiscard]] std::uint64_t number(View view, std::size_t bytes) const {
    return NumberIn(view, bytes, form_.order);
  }

  // tag, type, count, then the value or where it lies
  void take(View entry, TagDirectory& directory, int depth) {
    constexpr int kMostDepth = 2;
    const auto tag = static_cast<std::uint16_t>(number(entry, 2));
    const auto type = static_cast<std::uint16_t>(number(entry.subspan(2), 2));
    const std::uint64_t count = number(entry.subspan(4), form_.offsetBytes());
    const View field = entry.last(form_.offsetBytes());
    if (LeadsBelow(tag)) {
      if (depth < kMostDepth && !directory.below.contains(tag)) {
        directory.below[tag] = read(number(field, field.size()), depth + 1);
      }
      return;
    }
    if (!wanted_(tag)) return;
    const std::uint64_t unit = BytesOfType(type);
    if (unit == 0 || count > (kMostTagBytes - taken_) / unit) {
      isWhole_ = false;
      return;
    }
    const std::uint64_t bytes = unit * count;
    const bool liesInField = bytes <= field.size();
    const std::uint64_t at = liesInField ? 0 : number(field, field.size());
    auto value = liesInField
                     ? Bytes(field.begin(), field.begin() + static_cast<std::ptrdiff_t>(bytes))
                     : BytesAt(file_, at, bytes);
    if (!value) {
      isWhole_ = false;
      return;
    }
    taken_ += bytes;
    directory.tags[tag] = {type, std::move(*value), at};
  }

  std::istream& file_;
  TagForm form_;
  const std::function<bool(std::uint16_t)>& wanted_;
  std::uint64_t taken_ = 0;
  bool isWhole_ = true;
};

class Writer {
 public:
  Writer(TagForm form, std::uint64_t at) : form_(form), at_(at) {}

  // Gives the place of the directory.
  std::uint64_t write(const TagDirectory& directory, std::uint64_t next) {
    std::map<std::uint16_t, const TagDirectory*> below;
    for (const auto& [tag, one] : directory.below) below[tag] = &one;
    const std::size_t entries = directory.tags.size() + below.size();
    const std::size_t start = out_.size();
    std::size_t entry = start + form_.countBytes();
    const std::size_t end = entry + entries * form_.entryBytes();
    out_.resize(end + form_.offsetBytes());
    put(start, entries, form_.countBytes());
    put(end, next, form_.offsetBytes());
    // Entries go by rising tags, whether they hold a value or lead below.
    auto tag = directory.tags.begin();
    auto lower = below.begin();
    for (; entry < end; entry += form_.entryBytes()) {
      if (lower == below.end() || (tag != directory.tags.end() && tag->first < lower->first)) {
        putTag(entry, tag->first, tag->second);
        ++tag;
      } else {
        putHead(entry, lower->first, form_.isBig ? kTypeBigDirectory : kTypeLong, 1);
        makeEven();
        put(entry + form_.entryBytes() - form_.offsetBytes(), write(*lower->second, 0),
            form_.offsetBytes());
        ++lower;
      }
    }
    return at_ + start;
  }
  Bytes take() { return std::move(out_); }

 private:
  void put(std::size_t place, std::uint64_t number, std::size_t bytes) {
    PutNumber(std::span(out_).subspan(place, bytes), number, form_.order);
  }
  void putHead(std::size_t entry, std::uint16_t tag, std::uint16_t type, std::uint64_t count) {
    put(entry, tag, 2);
    put(entry + 2, type, 2);
    put(entry + 4, count, form_.offsetBytes());
  }
  void putTag(std::size_t entry, std::uint16_t id, const Tag& tag) {
    putHead(entry, id, tag.type,
            tag.value.size() / std::max<std::size_t>(BytesOfType(tag.type), 1));
    const std::size_t field = entry + form_.entryBytes() - form_.offsetBytes();
    if (tag.value.size() <= form_.offsetBytes()) {
      std::copy(tag.value.begin(), tag.value.end(),
                out_.begin() + static_cast<std::ptrdiff_t>(field));
      return;
    }
    makeEven();
    const std::uint64_t at = at_ + out_.size();
    put(field, at, form_.offsetBytes());
    Bytes value = tag.value;
    if (id == kTagMakerNote && tag.at != 0) MoveMakerNote(value, tag.at, at);
    Append(out_, value);
  }
  void makeEven() { out_.resize(out_.size() + out_.size() % 2); }

  TagForm form_;
  std::uint64_t at_;
  Bytes out_;
};

}  // namespace

std::size_t BytesOfType(std::uint16_t type) {
  // byte, text, short, long, rational, signed byte, undefined, signed short, signed long, signed
  // rational, float, double, directory, and in files with 64-bit offsets long, signed long,
  // directory
  constexpr std::array<std::size_t, 19> kBytes{0, 1, 1, 2, 4, 8, 1, 1, 2, 4,
                                               8, 4, 8, 4, 0, 0, 8, 8, 8};
  return type < kBytes.size() ? kBytes.at(type) : 0;
}

Tag TextTag(std::string_view text) {
  Tag tag{kTypeText, {text.begin(), text.end()}};
  tag.value.push_back(0);
  return tag;
}

void TurnByteOrder(TagDirectory& directory) {
  for (auto& [id, tag] : directory.tags) {
    const bool isFraction = tag.type == kTypeRational || tag.type == 10;
    const std::size_t unit = isFraction ? 4 : BytesOfType(tag.type);
    for (auto at = tag.value.begin(); unit > 1 && at != tag.value.end();) {
      const auto end = at + static_cast<std::ptrdiff_t>(unit);
      std::reverse(at, end);
      at = end;
    }
  }
  for (auto& [id, lower] : directory.below) TurnByteOrder(lower);
}

std::optional<TagForm> ReadTagForm(std::istream& file) {
  constexpr std::uint64_t kTiff = 42;
  constexpr std::uint64_t kBigTiff = 43;
  const auto mark = BytesAt(file, 0, 2);
  if (!mark || mark->front() != mark->back() || (mark->front() != 'I' && mark->front() != 'M')) {
    return std::nullopt;
  }
  TagForm form{.order = mark->front() == 'M' ? ByteOrder::kBig : ByteOrder::kLittle};
  const std::uint64_t kind = NumberAt(file, form, 2, 2);
  if (kind != kTiff && kind != kBigTiff) return std::nullopt;
  form.isBig = kind == kBigTiff;
  return form;
}

std::uint64_t NumberAt(std::istream& file, TagForm form, std::uint64_t at, std::size_t bytes) {
  const auto found = BytesAt(file, at, bytes);
  return found ? NumberIn(*found, bytes, form.order) : 0;
}

std::optional<std::uint64_t> FindPage(std::istream& file, TagForm form, int page, PagePlace& last) {
  if (page > kMostPages) return std::nullopt;
  if (last.page == 0 || page < last.page) last = {1, form.firstAt()};
  for (;;) {
    const std::uint64_t directory = NumberAt(file, form, last.at, form.offsetBytes());
    if (directory == 0) return std::nullopt;
    if (last.page == page) return last.at;
    const std::uint64_t entries = NumberAt(file, form, directory, form.countBytes());
    if (entries > kMostEntries) return std::nullopt;
    last = {last.page + 1, directory + form.countBytes() + entries * form.entryBytes()};
  }
}

TagDirectory ReadTags(std::istream& file, TagForm form, std::uint64_t at,
                      const std::function<bool(std::uint16_t)>& wanted, bool& isWhole) {
  Reader reader(file, form, wanted);
  TagDirectory directory = reader.read(at, 0);
  isWhole = reader.isWhole();
  return directory;
}

std::optional<Bytes> WriteTags(const TagDirectory& directory, TagForm form, std::uint64_t at,
                               std::uint64_t next) {
  Writer writer(form, at);
  writer.write(directory, next);
  Bytes bytes = writer.take();
  if (!form.isBig && at + bytes.size() > UINT32_MAX) return std::nullopt;
  return bytes;
}

}  // namespace client
