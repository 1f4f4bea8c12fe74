// JPEG XL; of a moving picture the first frame. The library turns it upright.
#include <jxl/decode.h>

#include <algorithm>
#include <array>

#include "pictures/codecs.h"
#include "pictures/exif.h"
#include "pictures/libraries.h"
#include "pictures/loaded_library.h"
#include "pictures/whole_reader.h"

namespace modules {
namespace {

struct Decoding {
  LoadedLibrary library{kJxlLibrary};
  ORVO_LIBRARY_CALL(JxlDecoderCreate);
  ORVO_LIBRARY_CALL(JxlDecoderDestroy);
  ORVO_LIBRARY_CALL(JxlDecoderSubscribeEvents);
  ORVO_LIBRARY_CALL(JxlDecoderSetInput);
  ORVO_LIBRARY_CALL(JxlDecoderProcessInput);
  ORVO_LIBRARY_CALL(JxlDecoderGetBasicInfo);
  ORVO_LIBRARY_CALL(JxlDecoderSetImageOutBuffer);
  ORVO_LIBRARY_CALL(JxlDecoderCloseInput);
  ORVO_LIBRARY_CALL(JxlDecoderSetDecompressBoxes);
  ORVO_LIBRARY_CALL(JxlDecoderGetBoxType);
  ORVO_LIBRARY_CALL(JxlDecoderSetBoxBuffer);
  ORVO_LIBRARY_CALL(JxlDecoderReleaseBoxBuffer);
  ORVO_LIBRARY_CALL(JxlDecoderGetColorAsEncodedProfile);
  ORVO_LIBRARY_CALL(JxlDecoderGetICCProfileSize);
  ORVO_LIBRARY_CALL(JxlDecoderGetColorAsICCProfile);
};
const Decoding& TheDecoding() {
  static const Decoding decoding;
  return decoding;
}

struct DecoderEnd {
  void operator()(JxlDecoder* decoder) const { TheDecoding().JxlDecoderDestroy(decoder); }
};

using DecoderHandle = std::unique_ptr<JxlDecoder, DecoderEnd>;

// Goes through a file once more for what stands beside the picture. What cannot be read is left
// out.
class Boxes {
 public:
  explicit Boxes(const std::vector<std::uint8_t>& file)
      : decoder_(TheDecoding().JxlDecoderCreate(nullptr)) {
    const Decoding& calls = TheDecoding();
    Require(decoder_, kModuleNoMemory);
    (void)calls.JxlDecoderSubscribeEvents(decoder_.get(), JXL_DEC_COLOR_ENCODING | JXL_DEC_BOX);
    (void)calls.JxlDecoderSetDecompressBoxes(decoder_.get(), JXL_TRUE);
    (void)calls.JxlDecoderSetInput(decoder_.get(), file.data(), file.size());
    calls.JxlDecoderCloseInput(decoder_.get());
  }

  Attachments found() {
    for (;;) {
      const JxlDecoderStatus status = TheDecoding().JxlDecoderProcessInput(decoder_.get());
      if (status == JXL_DEC_BOX_NEED_MORE_OUTPUT) {
        if (!grow()) return std::move(found_);
        continue;
      }
      endBox();
      if (status == JXL_DEC_COLOR_ENCODING) {
        takeProfile();
      } else if (status == JXL_DEC_BOX) {
        beginBox();
      } else {
        return std::move(found_);
      }
    }
  }

 private:
  static constexpr std::size_t kPart = std::size_t{1} << 16;
  static constexpr std::size_t kMost = std::size_t{1} << 26;
  static constexpr JxlPixelFormat kPixels{3, JXL_TYPE_UINT8, JXL_NATIVE_ENDIAN, 0};
  using BoxName = std::array<char, 4>;
  static constexpr BoxName kTags{'E', 'x', 'i', 'f'};
  static constexpr BoxName kPacket{'x', 'm', 'l', ' '};

  void beginBox() {
    (void)TheDecoding().JxlDecoderGetBoxType(decoder_.get(), name_.data(), JXL_TRUE);
    if (name_ == kTags || name_ == kPacket) (void)grow();
  }
  // Room for the next part of the box.
  bool grow() {
    const Decoding& calls = TheDecoding();
    const std::size_t left = box_.empty() ? 0 : calls.JxlDecoderReleaseBoxBuffer(decoder_.get());
    const std::size_t filled = box_.size() - left;
    if (filled > kMost) return false;
    box_.resize(filled + kPart);
    return calls.JxlDecoderSetBoxBuffer(decoder_.get(), &box_[filled], kPart) == JXL_DEC_SUCCESS;
  }
  void endBox() {
    if (box_.empty()) return;
    box_.resize(box_.size() - TheDecoding().JxlDecoderReleaseBoxBuffer(decoder_.get()));
    if (name_ == kPacket) {
      found_.xmp.assign(box_.begin(), box_.end());
    } else {
      found_.exif = TagsBehindPlace(box_);
    }
    box_.clear();
  }
  // Whether the library has a code for the colours and would only spell it out.
  [[nodiscard]] bool isCodedSrgb() const {
    JxlColorEncoding colors{};
    return TheDecoding().JxlDecoderGetColorAsEncodedProfile(decoder_.get(), &kPixels,
                                                            JXL_COLOR_PROFILE_TARGET_DATA,
                                                            &colors) == JXL_DEC_SUCCESS &&
           colors.transfer_function == JXL_TRANSFER_FUNCTION_SRGB &&
           colors.white_point == JXL_WHITE_POINT_D65 &&
           (colors.color_space == JXL_COLOR_SPACE_GRAY || colors.primaries == JXL_PRIMARIES_SRGB);
  }
  // Of the pixels as they are given, which is not always that of the source.
  void takeProfile() {
    const Decoding& calls = TheDecoding();
    if (isCodedSrgb()) return;
    std::size_t bytes = 0;
    if (calls.JxlDecoderGetICCProfileSize(decoder_.get(), &kPixels, JXL_COLOR_PROFILE_TARGET_DATA,
                                          &bytes) != JXL_DEC_SUCCESS) {
      return;
    }
    found_.profile.resize(bytes);
    if (calls.JxlDecoderGetColorAsICCProfile(decoder_.get(), &kPixels,
                                             JXL_COLOR_PROFILE_TARGET_DATA, found_.profile.data(),
                                             bytes) != JXL_DEC_SUCCESS) {
      found_.profile.clear();
    }
  }

  DecoderHandle decoder_;
  BoxName name_{};
  std::vector<std::uint8_t> box_;
  Attachments found_;
};

class JxlReader : public WholeReader {
 public:
  using WholeReader::WholeReader;

  bool readHeader(int page) override {
    if (page != 1) return false;
    file_ = ReadWhole(path_);
    const Decoding& calls = TheDecoding();
    decoder_.reset(calls.JxlDecoderCreate(nullptr));
    Require(decoder_, kModuleNoMemory);
    check(calls.JxlDecoderSubscribeEvents(decoder_.get(), JXL_DEC_BASIC_INFO | JXL_DEC_FULL_IMAGE),
          JXL_DEC_SUCCESS);
    check(calls.JxlDecoderSetInput(decoder_.get(), file_.data(), file_.size()), JXL_DEC_SUCCESS);
    check(calls.JxlDecoderProcessInput(decoder_.get()), JXL_DEC_BASIC_INFO);
    JxlBasicInfo info{};
    check(calls.JxlDecoderGetBasicInfo(decoder_.get(), &info), JXL_DEC_SUCCESS);
    constexpr std::uint32_t kMostSide = 1U << 30;
    Require(std::max(info.xsize, info.ysize) <= kMostSide, kFileFormatDamaged);
    picture_.compression = "JPEG XL";
    describe(static_cast<int>(info.xsize), static_cast<int>(info.ysize), info.alpha_bits != 0);
    return true;
  }

  void start() override {
    makeRoom(1);
    const Decoding& calls = TheDecoding();
    const JxlPixelFormat format{static_cast<std::uint32_t>(sampleCount()), JXL_TYPE_UINT8,
                                JXL_NATIVE_ENDIAN, 0};
    check(calls.JxlDecoderProcessInput(decoder_.get()), JXL_DEC_NEED_IMAGE_OUT_BUFFER);
    check(
        calls.JxlDecoderSetImageOutBuffer(decoder_.get(), &format, pixels_.data(), pixels_.size()),
        JXL_DEC_SUCCESS);
    check(calls.JxlDecoderProcessInput(decoder_.get()), JXL_DEC_FULL_IMAGE);
    redFirst_ = true;
    endStep();
  }

  [[nodiscard]] Attachments attachments() const override { return Boxes(file_).found(); }

 private:
  static void check(JxlDecoderStatus status, JxlDecoderStatus wanted) {
    Require(status == wanted, kFileFormatDamaged);
  }

  DecoderHandle decoder_;
};

}  // namespace

bool IsJxl(Head head) {
  constexpr std::array<std::uint8_t, 2> kStream{0xFF, 0x0A};
  constexpr std::array<std::uint8_t, 12> kBoxes{0,   0,   0,    12,   'J',  'X',
                                                'L', ' ', 0x0D, 0x0A, 0x87, 0x0A};
  const auto begins = [&](std::span<const std::uint8_t> mark) {
    return head.size() >= mark.size() && std::equal(mark.begin(), mark.end(), head.begin());
  };
  return begins(kStream) || begins(kBoxes);
}

ReaderHandle OpenJxl(const char* path, Report report) {
  return std::make_unique<JxlReader>(path, report);
}

}  // namespace modules
