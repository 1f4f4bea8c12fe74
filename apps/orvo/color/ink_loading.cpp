// Pictures of inks on their way out of a file, by way of the profile of the inks.
#include <algorithm>
#include <fstream>

#include "color_transform.h"
#include "picture_colors.h"
#include "pictures/codecs.h"
#include "pictures/loading.h"

namespace client {
namespace {

constexpr std::size_t kInkCount = 4;
constexpr std::size_t kColors = 3;

modules::ReaderHandle Opened(const std::string& path) {
  std::vector<char> bytes(modules::kHeadBytes);
  std::ifstream file(path, std::ios::binary);
  file.read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  const modules::Head head(reinterpret_cast<const std::uint8_t*>(bytes.data()),
                           static_cast<std::size_t>(file.gcount()));
  if (modules::IsJpeg(head)) return modules::OpenJpeg(path.c_str(), nullptr);
  if (modules::IsTiff(head)) return modules::OpenTiff(path.c_str(), nullptr);
  if (modules::IsPsd(head)) return modules::OpenPsd(path.c_str(), nullptr);
  return nullptr;
}

// A reader's page with its inks mixed as the profile says.
class MixingReader : public modules::PictureReader {
 public:
  MixingReader(modules::PictureReader& inks, const ColorTransform& transform)
      : PictureReader(nullptr, nullptr), inks_(inks), transform_(transform) {
    picture_ = inks.picture();
    picture_.hasInks = picture_.reversed = false;
    picture_.samples = picture_.hasAlpha ? 4 : 3;
  }

  bool readHeader(int /*page*/) override { return true; }
  void start() override { inks_.start(); }

  void readRow(std::uint8_t* row) override {
    const auto width = static_cast<std::size_t>(picture_.width);
    const auto step = static_cast<std::size_t>(inks_.picture().samples);
    stored_.resize(inks_.picture().rowBytes() + kInkCount);
    inks_.readRow(stored_.data());
    if (step == kInkCount) return transform_.run(stored_.data(), row, width);
    for (std::size_t x = 0; x < width; ++x) {
      transform_.run(&stored_[x * step], row + x * (kColors + 1), 1);
      row[x * (kColors + 1) + kColors] = stored_[x * step + kInkCount];
    }
  }

 private:
  modules::PictureReader& inks_;
  const ColorTransform& transform_;
  std::vector<std::uint8_t> stored_;
};

orvo::OwnedDib Loaded(const std::string& path, int page, std::span<const std::uint8_t> profile) {
  const modules::ReaderHandle reader = Opened(path);
  if (!reader || !reader->goTo(page)) return {};
  reader->keepInks();
  const modules::Picture& picture = reader->picture();
  if (!picture.hasInks) return {};
  const auto transform =
      ColorTransform::ToSrgb(profile, picture.reversed ? PixelForm::kInksLeft : PixelForm::kInks);
  if (!transform) return {};
  MixingReader mixing(*reader, transform);
  return modules::LoadPicture(mixing);
}

}  // namespace

orvo::OwnedDib LoadedFromInks(const std::string& path, int page,
                              std::span<const std::uint8_t> profile) {
  try {
    return Loaded(path, page, profile);
  } catch (const modules::ModuleError&) {
    return {};
  } catch (const std::bad_alloc&) {
    return {};
  }
}

}  // namespace client
