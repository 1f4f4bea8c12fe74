#include "jpeg_patch.h"

#include <algorithm>
#include <cstring>
#include <numeric>
#include <optional>
#include <utility>

#include "jpeg_coding.h"
#include "pictures/orientation.h"

namespace client {
namespace {

// The least pieces of a coded picture that hold whole blocks of every component.
struct Units {
  explicit Units(const JpegManner& manner)
      : across(manner.components.front().across), down(manner.components.front().down) {
    int mostAcross = across;
    int mostDown = down;
    for (const JpegManner::Component& component : manner.components) {
      across = std::gcd(across, component.across);
      down = std::gcd(down, component.down);
      mostAcross = std::max(mostAcross, component.across);
      mostDown = std::max(mostDown, component.down);
    }
    width = DCTSIZE * mostAcross / across;
    height = DCTSIZE * mostDown / down;
  }

  // Sampling factors that the components have in common.
  int across;
  int down;
  // In pixels.
  int width;
  int height;
};

// Units in a grid, those that a correction touches marked.
class Touched {
 public:
  Touched(const modules::Pixels& before, const modules::Pixels& after, const Units& units)
      : columns_((before.width + units.width - 1) / units.width),
        rows_((before.height + units.height - 1) / units.height),
        marks_(static_cast<std::size_t>(columns_) * static_cast<std::size_t>(rows_)) {
    for (int y = 0; y < before.height; ++y) {
      const std::uint8_t* const was = before.row(before.height - 1 - y);
      const std::uint8_t* const is = after.row(before.height - 1 - y);
      if (std::memcmp(was, is, before.rowBytes()) == 0) continue;
      for (int column = 0; column < columns_; ++column) {
        const int left = column * units.width;
        const int width = std::min(units.width, before.width - left);
        const auto start = static_cast<std::size_t>(left * before.depth / 8);
        const auto bytes = static_cast<std::size_t>(width * before.depth / 8);
        if (std::memcmp(was + start, is + start, bytes) != 0) mark(column, y / units.height);
      }
    }
  }

  [[nodiscard]] bool at(int column, int row) const { return marks_[indexOf(column, row)]; }
  // Round all that are marked, in units; empty when none is.
  [[nodiscard]] const std::optional<RECT>& frame() const { return frame_; }

 private:
  [[nodiscard]] std::size_t indexOf(int column, int row) const {
    return static_cast<std::size_t>(row) * static_cast<std::size_t>(columns_) +
           static_cast<std::size_t>(column);
  }
  void mark(int column, int row) {
    marks_[indexOf(column, row)] = true;
    if (!frame_) frame_ = RECT{column, row, column, row};
    frame_ = RECT{std::min(frame_->left, column), std::min(frame_->top, row),
                  std::max(frame_->right, column + 1), std::max(frame_->bottom, row + 1)};
  }

  int columns_;
  int rows_;
  std::vector<bool> marks_;
  std::optional<RECT> frame_;
};

// Takes the blocks of the touched units from the coded patch, which begins at the frame's corner.
class Exchange {
 public:
  Exchange(const Units& units, const Touched& touched, JpegInput& picture, JpegInput& patch)
      : units_(units),
        touched_(touched),
        frame_(*touched.frame()),
        picture_(picture),
        patch_(patch) {}

  void component(int index) {
    const jpeg_component_info& whole = picture_.codec().comp_info[index];
    const jpeg_component_info& part = patch_.codec().comp_info[index];
    const int across = whole.h_samp_factor / units_.across;
    const int down = whole.v_samp_factor / units_.down;
    for (int row = 0; row < static_cast<int>(part.height_in_blocks); ++row) {
      const JBLOCKROW from = patch_.blocks(index, static_cast<JDIMENSION>(row));
      const JBLOCKROW to = picture_.blocks(index, static_cast<JDIMENSION>(frame_.top * down + row));
      for (int column = 0; column < static_cast<int>(part.width_in_blocks); ++column) {
        if (!touched_.at(frame_.left + column / across, frame_.top + row / down)) continue;
        std::copy_n(from[column], DCTSIZE2, to[frame_.left * across + column]);
      }
    }
  }

 private:
  const Units& units_;
  const Touched& touched_;
  RECT frame_;
  JpegInput& picture_;
  JpegInput& patch_;
};

// A loaded picture as its file stores it. Owns a copy where the file's orientation is another.
class Stored {
 public:
  Stored(DibHandle shown, int orientation)
      : turned_(orientation == modules::kUpright ? modules::OwnedBlock()
                                                 : Turned(shown, orientation)),
        image_(turned_ ? turned_.get() : shown) {
    if (!image_) throw NotPossible{"there is no usable picture"};
  }
  const modules::LockedDib& operator*() const { return image_; }

 private:
  static modules::OwnedBlock Turned(DibHandle shown, int orientation) {
    constexpr int kClockwise = 6;
    constexpr int kCounterClockwise = 8;
    const int back = orientation == kClockwise          ? kCounterClockwise
                     : orientation == kCounterClockwise ? kClockwise
                                                        : orientation;
    modules::OwnedBlock copy = modules::CopyOf(modules::LockedDib(shown));
    copy = modules::TurnedUpright(std::move(copy), back);
    modules::Require(copy, kModuleNoMemory);
    return copy;
  }

  modules::OwnedBlock turned_;
  modules::LockedDib image_;
};

void RequireCodable(const JpegFile::Frame& frame) {
  constexpr std::uint8_t kProgressive = 0xC2;
  constexpr std::uint8_t kFirstArithmetic = 0xC9;
  if (frame.marker >= kFirstArithmetic) throw NotPossible{"the file is coded arithmetically"};
  if (frame.marker > kProgressive) throw NotPossible{"the file's coding is lossless or in levels"};
  if (frame.bits != 8) {
    throw NotPossible{"the file has " + std::to_string(frame.bits) + " bits a sample"};
  }
}

void RequireSameShape(const modules::Pixels& before, const modules::Pixels& after,
                      const JpegFile::Frame& frame, JpegManner::Colors colors) {
  if (colors == JpegManner::Colors::kOther) throw NotPossible{"the file holds inks"};
  const bool agree = before.width == after.width && before.height == after.height &&
                     before.depth == after.depth && before.width == frame.width &&
                     before.height == frame.height;
  const bool inTones = modules::BytesAreTones(before) && modules::BytesAreTones(after);
  if (!agree || (colors == JpegManner::Colors::kTones ? !inTones : before.depth != 24)) {
    throw NotPossible{"the picture has another size or depth than the file's"};
  }
}

RECT InPixels(const RECT& frame, const Units& units, const modules::Pixels& picture) {
  return {frame.left * units.width, frame.top * units.height,
          std::min(frame.right * units.width, picture.width),
          std::min(frame.bottom * units.height, picture.height)};
}

void Patch(const Bytes& bytes, JpegFile& file, DibHandle before, DibHandle after) {
  RequireCodable(file.frame);
  JpegInput picture(bytes);
  const JpegManner manner = picture.manner();
  const Stored was(before, file.orientation());
  const Stored is(after, file.orientation());
  RequireSameShape(**was, **is, file.frame, manner.colors);

  const Units units(manner);
  const Touched touched(**was, **is, units);
  picture.readCoefficients();
  if (!touched.frame()) return;
  // Units are coded without a look at their neighbours, so the part gives the same as the whole.
  JpegManner plain = picture.manner();
  const bool wasProgressive = std::exchange(plain.progressive, false);
  const Bytes coded = Encoded(plain, *is, InPixels(*touched.frame(), units, **is));
  JpegInput patch(coded);
  patch.readCoefficients();
  Exchange exchange(units, touched, picture, patch);
  for (int i = 0; i < file.frame.components; ++i) exchange.component(i);
  plain.progressive = wasProgressive;
  file.coded = TakenApart(picture.written(plain)).coded;
}

}  // namespace

Outcome PatchJpeg(const std::string& source, DibHandle before, DibHandle after,
                  const std::string& target) {
  return ChangeFile(source, target,
                    [&](const Bytes& bytes, JpegFile& file) { Patch(bytes, file, before, after); });
}

}  // namespace client
