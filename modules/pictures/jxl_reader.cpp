// JPEG XL; of a moving picture the first frame. The library turns it upright.
#include <jxl/decode.h>

#include <algorithm>
#include <array>

#include "pictures/codecs.h"
#include "pictures/loaded_library.h"
#include "pictures/whole_reader.h"

namespace modules {
namespace {

struct Decoding {
  LoadedLibrary library{"libjxl.so." ORVO_JXL_SERIES};
  ORVO_LIBRARY_CALL(JxlDecoderCreate);
  ORVO_LIBRARY_CALL(JxlDecoderDestroy);
  ORVO_LIBRARY_CALL(JxlDecoderSubscribeEvents);
  ORVO_LIBRARY_CALL(JxlDecoderSetInput);
  ORVO_LIBRARY_CALL(JxlDecoderProcessInput);
  ORVO_LIBRARY_CALL(JxlDecoderGetBasicInfo);
  ORVO_LIBRARY_CALL(JxlDecoderSetImageOutBuffer);
};
const Decoding& TheDecoding() {
  static const Decoding decoding;
  return decoding;
}

struct DecoderEnd {
  void operator()(JxlDecoder* decoder) const { TheDecoding().JxlDecoderDestroy(decoder); }
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

 private:
  static void check(JxlDecoderStatus status, JxlDecoderStatus wanted) {
    Require(status == wanted, kFileFormatDamaged);
  }

  std::unique_ptr<JxlDecoder, DecoderEnd> decoder_;
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
