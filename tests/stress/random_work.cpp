#include "random_work.h"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <string_view>
#include <utility>

#include "support/pictures.h"

namespace stress {
namespace {

namespace fs = std::filesystem;
using orvo::LockedImage;

constexpr int kMostSide = 200;
// Of a picture that goes on, grown by what was done to it.
constexpr std::size_t kMostBytes = 400'000;

// Percent at which the callback stops an operation, once. It stays installed, and may stop one that
// it was not given to.
constexpr int kNever = 101;
int stopAt = kNever;
int Watch(int percent, void* /*userData*/) {
  if (percent < stopAt) return ORVO_OK;
  stopAt = kNever;
  return ORVO_ERR_CANCELLED;
}

// Two names of each kind that is written, or only read, and of kinds that are neither.
constexpr std::array<std::string_view, 25> kExtensions{
    "bmp", "tif", "tiff", "jpg", "jpeg", "pcx", "psd", "png",  "ras",  "pcd",  "wmf", "tga", "pct",
    "eps", "wpg", "pdf",  "gif", "fpx",  "cmp", "jff", "webp", "heic", "avif", "jxl", "txt"};

// Files of the kinds that are only read, made by other programs, once; none where those are
// missing.
class ForeignFiles {
 public:
  ForeignFiles()
      : folder_(fs::temp_directory_path() / ("orvo-foreign-" + std::to_string(getpid()))) {
    fs::create_directories(folder_);
    const std::string commands =
        "cd " + folder_.string() + "; convert -size 61x43 -seed 5 plasma: 0.gif; " +
        "for kind in webp heic avif; do convert 0.gif 0.$kind; done; gm convert 0.gif 0.jxl";
    (void)!std::system(("{ " + commands + "; } 2>/dev/null").c_str());
  }
  ~ForeignFiles() { fs::remove_all(folder_); }
  ForeignFiles(const ForeignFiles&) = delete;
  ForeignFiles& operator=(const ForeignFiles&) = delete;

  static void copyTo(const fs::path& folder) {
    static const ForeignFiles files;
    fs::copy(files.folder_, folder);
  }

 private:
  fs::path folder_;
};

}  // namespace

RandomWork::RandomWork(unsigned seed, std::filesystem::path folder, Company company)
    : random_(seed), folder_(std::move(folder)), company_(company) {
  ForeignFiles::copyTo(folder_);
  if (company == Company::kAlone) stopAt = kNever;
}

RandomWork::~RandomWork() {
  fs::remove_all(folder_);
}

long RandomWork::strays() const {
  return std::ranges::count_if(fs::directory_iterator(folder_), [](const auto& file) {
    const std::string extension = file.path().extension().string();
    return extension.empty() ||
           std::ranges::find(kExtensions, extension.substr(1)) == kExtensions.end();
  });
}

int RandomWork::pickNumber(const Number& number) {
  const int chance = pick(0, 39);
  if (chance == 0) return number.low - 1;
  if (chance == 1) return number.high + 1;
  return chance < 26 ? number.usual : pick(number.low, number.high);
}

std::string RandomWork::pickFile() {
  const auto kind = static_cast<std::size_t>(pick(0, kExtensions.size() - 1));
  return folder_ / (std::to_string(pick(0, 1)) + "." + std::string(kExtensions[kind]));
}

StatusCallback RandomWork::pickCallback() {
  if (company_ == Company::kAmongOthers) return nullptr;
  if (oneIn(10)) stopAt = pick(0, 100);
  return oneIn(3) ? Watch : nullptr;
}

// Pictures have 300 dots per inch, seldom none: one that was brought to 1 and back would take
// gigabytes. Now and then a header claims more than there is.
void RandomWork::prepareImage() {
  constexpr std::array kDepths{1, 4, 8, 8, 16, 24, 24, 24, 24, 32};
  if (!image_ || GlobalSize(image_.get()) > kMostBytes || oneIn(12)) {
    const int depth = kDepths[static_cast<std::size_t>(pick(0, kDepths.size() - 1))];
    const auto make = depth <= 8 && oneIn(2) ? pictures::NoiseInColor : pictures::Noise;
    image_ = make(pick(1, kMostSide), pick(1, kMostSide), depth, static_cast<unsigned>(random_()));
  }
  const pictures::Locked image(image_.get());
  const std::int32_t resolution = oneIn(20) ? 0 : orvo::PixelsPerMetre(300);
  image.header()->biXPelsPerMeter = image.header()->biYPelsPerMeter = resolution;
  if (oneIn(100)) image.header()->biHeight += pick(1, 1000);
}

// A result becomes the picture, or is let go.
void RandomWork::takeOver(DibHandle result) {
  if (result == nullptr || result == image_.get()) return;
  orvo::OwnedDib made(result);
  if (oneIn(2)) image_ = std::move(made);
}

int RandomWork::step(COrvoInstance& toolkit) {
  const auto operations = EveryOperation();
  do {
    operation_ = &operations[static_cast<std::size_t>(pick(0, 59))];
  } while (company_ == Company::kAmongOthers &&
           std::string_view(operation_->name) == "SetDitheringMode");
  prepareImage();
  std::array<int, 4> numbers{};
  for (std::size_t i = 0; i < numbers.size(); ++i) numbers[i] = pickNumber(operation_->numbers[i]);
  DibHandle result = nullptr;
  const Call call{.toolkit = toolkit,
                  .image = image_.address(),
                  .result = &result,
                  .numbers = numbers,
                  .source = pickFile(),
                  .target = pickFile(),
                  .converter = oneIn(2) ? SEPIA_CONVERTER : "/no/such/converter",
                  .watch = pickCallback()};
  const int code = operation_->call(call);
  add(static_cast<std::uint64_t>(code));
  takeOver(result);
  addImage();
  return code;
}

void RandomWork::addImage() {
  const LockedImage image(image_.get());
  for (std::size_t i = 0; i < image.size(); ++i) add(image.bytes()[i]);
}

}  // namespace stress
