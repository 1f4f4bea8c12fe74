// Commands about what lies on a page: the list of its items, and a crooked page turned upright.
#include <filesystem>

#include "marks.h"
#include "operations.h"
#include "picture.h"
#include "progress.h"

namespace client {
namespace {

namespace fs = std::filesystem;

constexpr int kMostPixels = 65535;  // of a reach

int FindItems(Job& job, Rects& items) {
  RegionRecord* list = nullptr;
  int count = 0;
  const int code = job.toolkit.FindRegions(
      job.image.get(), &list, &count, job.parameters.whole("reach"), job.parameters.whole("level"));
  if (list == nullptr) return code;
  for (const RegionRecord& item : std::span(list, static_cast<std::size_t>(count))) {
    items.push_back({item.left, item.top, item.right, item.bottom});
  }
  GlobalFree(list);
  return code;
}

// Each item to a file of its own, in the format of the page.
int Crop(Job& job, const Rects& items, const fs::path& folder, int height) {
  const fs::path page(job.source);
  int number = 0;
  for (const RECT& item : items) {
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

int Regions(Job& job) {
  const auto shape = ShapeOf(job.image.get());
  if (!shape) return ORVO_ERR_NO_BITMAP;
  Rects items;
  int code = FindItems(job, items);
  if (code != ORVO_OK) return code;
  job.report.set("items", Listed(items));
  if (job.parameters.has("crop")) {
    code = Crop(job, items, job.parameters.text("crop"), shape->height);
  }
  if (code == ORVO_OK && job.parameters.has("mark")) {
    code = SaveMarked(job, items, kRed, job.parameters.text("mark"));
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
  job.moved = hundredths != 0;
  job.report.set("angle", hundredths / 100);
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
