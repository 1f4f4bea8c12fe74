// WebP; of a moving one the first frame.
#include <webp/decode.h>
#include <webp/demux.h>

#include <algorithm>

#include "pictures/codecs.h"
#include "pictures/exif.h"
#include "pictures/libraries.h"
#include "pictures/loaded_library.h"
#include "pictures/whole_reader.h"

namespace modules {
namespace {

struct Decoding {
  LoadedLibrary library{kWebpLibrary};
  ORVO_LIBRARY_CALL(WebPINewRGB);
  ORVO_LIBRARY_CALL(WebPIUpdate);
  ORVO_LIBRARY_CALL(WebPIDelete);
};
struct Parts {
  LoadedLibrary library{kWebpPartsLibrary};
  ORVO_LIBRARY_CALL(WebPDemuxInternal);
  ORVO_LIBRARY_CALL(WebPDemuxDelete);
  ORVO_LIBRARY_CALL(WebPDemuxGetI);
  ORVO_LIBRARY_CALL(WebPDemuxGetFrame);
  ORVO_LIBRARY_CALL(WebPDemuxReleaseIterator);
  ORVO_LIBRARY_CALL(WebPDemuxGetChunk);
  ORVO_LIBRARY_CALL(WebPDemuxReleaseChunkIterator);
};
const Decoding& TheDecoding() {
  static const Decoding decoding;
  return decoding;
}
const Parts& TheParts() {
  static const Parts parts;
  return parts;
}

struct PartsEnd {
  void operator()(WebPDemuxer* parts) const { TheParts().WebPDemuxDelete(parts); }
};
struct DecoderEnd {
  void operator()(WebPIDecoder* decoder) const { TheDecoding().WebPIDelete(decoder); }
};

class WebpReader : public WholeReader {
 public:
  using WholeReader::WholeReader;

  bool readHeader(int page) override {
    if (page != 1) return false;
    file_ = ReadWhole(path_);
    const WebPData data{file_.data(), file_.size()};
    parts_.reset(TheParts().WebPDemuxInternal(&data, 0, nullptr, WEBP_DEMUX_ABI_VERSION));
    Require(parts_, kFileFormatDamaged);
    takeFrame();
    const auto measure = [&](WebPFormatFeature feature) {
      return static_cast<int>(TheParts().WebPDemuxGetI(parts_.get(), feature));
    };
    const int width = measure(WEBP_FF_CANVAS_WIDTH);
    const int height = measure(WEBP_FF_CANVAS_HEIGHT);
    picture_.compression = "WebP";
    describe(width, height, frame_.has_alpha || frame_.width < width || frame_.height < height);
    Require(frame_.x_offset + frame_.width <= width && frame_.y_offset + frame_.height <= height,
            kFileFormatDamaged);
    takeTags();
    return true;
  }

  // The frame's data goes in by parts, so that the report can stop it.
  void start() override {
    constexpr std::size_t kPartBytes = std::size_t{1} << 16;
    const std::span<const std::uint8_t> data(frame_.fragment.bytes, frame_.fragment.size);
    makeRoom(data.size() / kPartBytes + 1);
    const std::size_t rowBytes = picture_.rowBytes();
    const std::size_t offset = static_cast<std::size_t>(frame_.y_offset) * rowBytes +
                               static_cast<std::size_t>(frame_.x_offset) * sampleCount();
    const std::unique_ptr<WebPIDecoder, DecoderEnd> decoder(
        TheDecoding().WebPINewRGB(picture_.hasAlpha ? MODE_BGRA : MODE_BGR, &pixels_[offset],
                                  pixels_.size() - offset, static_cast<int>(rowBytes)));
    Require(decoder, kModuleNoMemory);
    VP8StatusCode status = VP8_STATUS_SUSPENDED;
    for (std::size_t end = 0; end < data.size() && status == VP8_STATUS_SUSPENDED; endStep()) {
      end = std::min(end + kPartBytes, data.size());
      status = TheDecoding().WebPIUpdate(decoder.get(), data.data(), end);
    }
    Require(status != VP8_STATUS_OUT_OF_MEMORY, kModuleNoMemory);
    Require(status == VP8_STATUS_OK, kFileFormatDamaged);
  }

 private:
  // What it points to lies in the file.
  void takeFrame() {
    const bool found = TheParts().WebPDemuxGetFrame(parts_.get(), 1, &frame_) != 0;
    const bool whole = found && frame_.complete != 0;
    TheParts().WebPDemuxReleaseIterator(&frame_);
    Require(whole, kFileFormatDamaged);
  }

  void takeTags() {
    WebPChunkIterator tags{};
    if (TheParts().WebPDemuxGetChunk(parts_.get(), "EXIF", 1, &tags) != 0) {
      constexpr std::string_view kName("Exif\0\0", 6);
      std::span<const std::uint8_t> block(tags.chunk.bytes, tags.chunk.size);
      const bool named =
          block.size() >= kName.size() && std::equal(kName.begin(), kName.end(), block.begin());
      ReadExif(block.subspan(named ? kName.size() : 0), picture_);
    }
    TheParts().WebPDemuxReleaseChunkIterator(&tags);
  }

  std::unique_ptr<WebPDemuxer, PartsEnd> parts_;
  WebPIterator frame_{};
};

}  // namespace

bool IsWebp(Head head) {
  constexpr std::string_view kFile("RIFF");
  constexpr std::string_view kKind("WEBP");
  constexpr std::size_t kKindAt = 8;
  return head.size() >= kKindAt + kKind.size() &&
         std::equal(kFile.begin(), kFile.end(), head.begin()) &&
         std::equal(kKind.begin(), kKind.end(), head.begin() + kKindAt);
}

ReaderHandle OpenWebp(const char* path, Report report) {
  return std::make_unique<WebpReader>(path, report);
}

}  // namespace modules
