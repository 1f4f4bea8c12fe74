// What a made-up file holds beside its picture goes into a sound one of any kind that takes it:
// that still shows its own picture.
#include <orvo/raii.h>

#include "common/dib_image.h"
#include "fuzz.h"
#include "metadata.h"
#include "pictures/codecs.h"
#include "support/pictures.h"

namespace {

constexpr int kWidth = 6, kHeight = 4;
constexpr std::size_t kRequestBytes = 2;  // at the end of the input

// Of a file: all that is shown of it. Its resolution may be carried.
std::vector<std::uint8_t> Shown(const fuzz::File& file) {
  orvo::OwnedDib picture;
  fuzz::Require(fuzz::Toolkit().LoadFile(file.name(), picture.receive()) == ORVO_OK,
                "the result does not load");
  {
    const pictures::Locked image(picture.get());
    image.header()->biXPelsPerMeter = image.header()->biYPelsPerMeter = 0;
  }
  return pictures::BytesOf(picture.get());
}

struct Result {
  std::string kind;
  std::vector<std::uint8_t> bytes{}, shown{};
};

Result Made(const char* kind) {
  const orvo::OwnedDib picture = pictures::Noise(kWidth, kHeight, 24, 1);
  const fuzz::File file(std::string("result.") + kind);
  if (std::string_view(kind) == "webp") {
    modules::SaveWebp({.path = file.name(), .quality = 90, .lossless = true},
                      modules::LockedDib(picture.get()));
  } else {
    fuzz::Require(fuzz::Toolkit().SaveFile(picture.get(), file.name(), 0, 90) == ORVO_OK,
                  "no file to write into");
  }
  return {kind, modules::ReadWhole(file.name()), Shown(file)};
}

const Result& ResultOf(unsigned choice) {
  static const Result made[] = {Made("jpg"), Made("png"), Made("tif"), Made("psd"), Made("webp")};
  return made[choice % std::size(made)];
}
constexpr unsigned kResults = 5;

client::MetadataRequest RequestOf(unsigned choices) {
  client::MetadataRequest request;
  request.strip = static_cast<client::Strip>(choices % 3);
  request.page = 1 + static_cast<int>(choices / 3 % 3);
  request.width = kWidth;
  request.height = kHeight;
  request.colorsChanged = (choices & 64) != 0;
  request.inSrgb = (choices & 128) != 0;
  request.newResolution = (choices & 256) != 0;
  request.xDotsPerInch = request.yDotsPerInch = choices >> 9;
  return request;
}

template <class Work>
void OrFault(const Work& work) {
  try {
    work();
  } catch (const client::MetadataFault&) {
    // Told in words, and the file is as it was.
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size < kRequestBytes) return -1;
  const fuzz::Accounts accounts;
  const unsigned choices = data[size - 1] * 256U + data[size - 2];
  const Result& sound = ResultOf(choices);
  const fuzz::File source("source", {data, size - kRequestBytes});
  const fuzz::File result("result." + sound.kind, sound.bytes);

  client::MetadataRequest request = RequestOf(choices / kResults);
  request.source = source.path();
  request.result = result.path();
  OrFault([&] { (void)client::KeepMetadata(request); });
  fuzz::Require(Shown(result) == sound.shown, "the result shows something else: " + sound.kind);
  OrFault([&] { (void)client::TakeForDocument(request, client::PictureIs::kUpright); });
  OrFault([&] { (void)client::ReadColorProfile(source.path(), request.page); });
  if (size > 2 && data[0] == 0xFF && data[1] == 0xD8) {
    OrFault([&] { client::WipeJpegPreview(source.path()); });
  }
  return 0;
}
