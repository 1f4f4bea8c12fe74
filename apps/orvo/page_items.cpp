// Commands about what lies on a page: the list of its items, and a crooked page turned upright.
#include <algorithm>
#include <cstring>
#include <filesystem>

#include "operations.h"
#include "picture.h"
#include "progress.h"

namespace client {
namespace {

namespace fs = std::filesystem;

constexpr int kMostPixels = 65535;  // of a reach
constexpr int kFrameWidth = 3;      // pixels of a mark

using Items = std::vector<RegionRecord>;

int FindItems(Job& job, Items& items) {
  RegionRecord* list = nullptr;
  int count = 0;
  const int code = job.toolkit.FindRegions(
      job.image.get(), &list, &count, job.parameters.whole("reach"), job.parameters.whole("level"));
  if (list == nullptr) return code;
  items.assign(list, list + count);
  GlobalFree(list);
  return code;
}

int SaveInto(Job& job, DibHandle picture, const fs::path& folder, const std::string& name) {
  std::error_code fault;
  fs::create_directories(folder, fault);
  const std::string target = (folder / name).string();
  job.hint = job.furtherTargets.claim(target);
  if (!job.hint.empty()) return ORVO_ERR_FILE_OPEN;
  const int code = job.toolkit.SaveFile(picture, target.c_str(), 0, job.quality);
  if (code == ORVO_OK) {
    job.report["written"].push_back(target);
  } else {
    job.hint = "while writing " + target;
  }
  return code;
}

// Each item to a file of its own, in the format of the page.
int Crop(Job& job, const Items& items, const fs::path& folder, int height) {
  const fs::path page(job.source);
  int number = 0;
  for (const RegionRecord& item : items) {
    orvo::OwnedDib cut;
    int code = job.toolkit.Trim(job.image.get(), cut.receive(job.image), item.left,
                                height - item.bottom, item.right, height - item.top);
    const std::string name =
        page.stem().string() + "-" + std::to_string(++number) + page.extension().string();
    if (code == ORVO_OK) code = SaveInto(job, cut.get(), folder, name);
    if (code != ORVO_OK) return code;
  }
  return ORVO_OK;
}

// A frame along the inside of an item's edge, in red; the picture has 24 bits.
void Frame(std::uint8_t* rows, const orvo::DibLayout& layout, const RegionRecord& item) {
  constexpr std::uint8_t kRed[] = {0, 0, 255};
  for (int y = item.top; y < item.bottom; ++y) {
    std::uint8_t* const row =
        rows + layout.stride * static_cast<std::size_t>(layout.height - 1 - y);
    for (int x = item.left; x < item.right; ++x) {
      const int inside =
          std::min({x - item.left, item.right - 1 - x, y - item.top, item.bottom - 1 - y});
      if (inside < kFrameWidth) std::memcpy(row + std::ptrdiff_t{3} * x, &kRed, sizeof kRed);
    }
  }
}

// A copy of the page in true colour with a frame round each item.
int Mark(Job& job, const Items& items, const fs::path& folder) {
  orvo::OwnedDib marked;
  int code = ORVO_OK;
  const auto shape = ShapeOf(job.image.get());
  if (shape && shape->bits == 1) {
    // Two colours go to true colour by way of gray.
    code = job.toolkit.ConvertToGrayScaleRes(job.image.get(), marked.receive(job.image), nullptr);
    if (code == ORVO_OK) code = job.toolkit.ConvertToColorResInPlace(marked.address(), 24);
  } else {
    code = job.toolkit.ConvertToColorRes(job.image.get(), marked.receive(job.image), 24);
  }
  if (code != ORVO_OK) return code;
  auto* const bytes = static_cast<std::uint8_t*>(GlobalLock(marked.get()));
  const auto layout = orvo::DibLayoutOf(bytes, GlobalSize(marked.get()));
  if (layout && layout->depth == 24) {
    for (const RegionRecord& item : items) Frame(bytes + layout->pixelOffset, *layout, item);
  }
  if (bytes != nullptr) GlobalUnlock(marked.get());
  return SaveInto(job, marked.get(), folder, fs::path(job.source).stem().string() + "-marked.png");
}

int Regions(Job& job) {
  const auto shape = ShapeOf(job.image.get());
  if (!shape) return ORVO_ERR_NO_BITMAP;
  Items items;
  int code = FindItems(job, items);
  if (code != ORVO_OK) return code;
  job.report["items"] = nlohmann::ordered_json::array();
  for (const RegionRecord& item : items) {
    job.report["items"].push_back({item.left, item.top, item.right, item.bottom});
  }
  if (job.parameters.has("crop")) {
    code = Crop(job, items, job.parameters.text("crop"), shape->height);
  }
  if (code == ORVO_OK && job.parameters.has("mark")) {
    code = Mark(job, items, job.parameters.text("mark"));
  }
  return code;
}

// The toolkit tells of a failure by the result alone.
int Deskew(Job& job) {
  orvo::OwnedDib upright;
  int hundredths = 0;
  job.toolkit.AutoDeskew(job.image.get(), upright.receive(job.image), &hundredths, ReportProgress);
  if (!upright) return ORVO_ERR_FAILURE;
  job.image = std::move(upright);
  job.report["angle"] = hundredths / 100;
  return ORVO_OK;
}

constexpr Option kRegionOptions[] = {
    {.name = "reach",
     .meaning = "pixels across which parts of an item join",
     .least = 0,
     .most = kMostPixels,
     .fallback = "25"},
    {.name = "level",
     .meaning = "gray from which a pixel is background",
     .least = 0,
     .most = 255,
     .fallback = "250"},
    {.name = "crop", .meaning = "folder for a file of each item", .kind = ValueKind::kFile},
    {.name = "mark",
     .meaning = "folder for a copy of the page, PNG, with a frame round each item",
     .kind = ValueKind::kFile}};

constexpr Operation kRows[] = {
    {.name = "regions",
     .summary = "List the items on a scanner bed: left, top, right, bottom, from the top left",
     .example = "--crop items/ bed.png",
     .run = Regions,
     .options = kRegionOptions,
     .subject = Subject::kFiles},
    {.name = "deskew",
     .summary = "Turn a crooked page upright, by whole degrees, and tell the angle, clockwise",
     .example = "scan.tif -o straight.tif",
     .run = Deskew},
};

}  // namespace

std::span<const Operation> ItemOperations() {
  return kRows;
}

}  // namespace client
