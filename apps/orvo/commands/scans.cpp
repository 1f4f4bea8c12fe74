// Commands that clean up scans.
#include <algorithm>

#include "file_kind.h"
#include "jpeg_turn.h"
#include "marks.h"
#include "operations.h"
#include "picture.h"
#include "progress.h"

namespace client {
namespace {

constexpr std::string_view kGrayOrTrueColor = "8 and 24 bits";
constexpr std::string_view kPages = "1-bit, 8-bit gray and 24-bit pages";
constexpr int kMostPixels = 65535;  // of a width or height

// The result goes to a new block: in place the windows would see pixels that are already smoothed.
int Descreen(Job& job) {
  orvo::OwnedDib smooth;
  const int code = job.toolkit.Descreen(job.image.get(), smooth.receive(job.image),
                                        static_cast<std::uint32_t>(job.parameters.whole("level")),
                                        static_cast<std::uint32_t>(job.parameters.whole("sharpen")),
                                        ReportProgress);
  if (code == ORVO_OK) job.image = std::move(smooth);
  return code;
}

// People count rows from the top, the toolkit from the bottom.
RECT Turned(const RECT& rect, int height) {
  return {rect.left, height - rect.bottom, rect.right, height - rect.top};
}

// What auto-trim would keep, counted from the top left of the picture as shown.
int FindContent(Job& job, RECT& rect) {
  const auto shape = ShapeOf(job.image.get());
  if (!shape) return ORVO_ERR_NO_BITMAP;
  const int code = job.toolkit.GetAutoTrimRect(
      job.image.get(), static_cast<std::uint8_t>(job.parameters.whole("threshold")), &rect);
  rect = Turned(rect, shape->height);
  return code;
}

int Content(Job& job) {
  RECT rect{};
  const int code = FindContent(job, rect);
  if (code == ORVO_OK) job.report.set("rect", Listed(rect));
  return code;
}

int Trim(Job& job) {
  const auto shape = ShapeOf(job.image.get());
  if (!shape) return ORVO_ERR_NO_BITMAP;
  RECT rect{};
  if (job.parameters.has("auto")) {
    if (const int code = FindContent(job, rect); code != ORVO_OK) return code;
    job.report.set("rect", Listed(rect));
  } else {
    const auto side = [&job](std::size_t index) { return job.parameters.whole("rect", index); };
    rect = {side(0), side(1), side(2), side(3)};
  }
  if (rect.right > shape->width || rect.bottom > shape->height) {
    job.hint = "the picture has " + std::to_string(shape->width) + " x " +
               std::to_string(shape->height) + " pixels";
    return ORVO_ERR_OUT_OF_RANGE;
  }
  if (KindOfFile(job.source) == "jpeg") {
    job.withoutLoss = [&job, rect](const std::string& path) {
      return CutJpeg(job.source, rect, path);
    };
  }
  const RECT stored = Turned(rect, shape->height);
  return job.toolkit.TrimInPlace(job.image.address(), stored.left, stored.top, stored.right,
                                 stored.bottom);
}

std::string CheckTrim(const Parameters& parameters) {
  if (parameters.has("auto") == parameters.has("rect")) return "either --rect or --auto is needed";
  if (parameters.has("auto")) return {};
  const std::vector<double>& rect = parameters.numbers("rect");
  if (rect[0] < rect[2] && rect[1] < rect[3]) return {};
  return "--rect has no area: left,top,right,bottom, right and bottom exclusive";
}

constexpr Option kThreshold = {.name = "threshold",
                               .meaning = "for what counts as dark; higher counts less",
                               .least = 0,
                               .most = 255,
                               .fallback = "100"};

constexpr Option kDescreenOptions[] = {
    {.name = "level",
     .meaning = "the coarser the screen, the higher; windows of 3, 5, 7 and 9 pixels",
     .least = 0,
     .most = 3,
     .fallback = "1"},
    {.name = "sharpen",
     .meaning = "sharpening afterwards, 0 for none",
     .least = 0,
     .most = 100,
     .fallback = "0"}};
constexpr Option kTrimOptions[] = {
    {.name = "rect",
     .meaning = "left,top,right,bottom in pixels from the top left, right and bottom exclusive",
     .least = 0,
     .most = kMostPixels,
     .fewest = 4,
     .atMost = 4},
    {.name = "auto", .meaning = "find a page's content and cut to it", .kind = ValueKind::kFlag},
    {.name = "perfect",
     .meaning = "of a JPEG: refuse what cannot be done without loss",
     .kind = ValueKind::kFlag},
    kThreshold};
constexpr Option kContentOptions[] = {kThreshold};

constexpr Operation kRows[] = {
    {.name = "descreen",
     .summary = "Smooth the dots of a screened print",
     .example = "--level 2 --sharpen 20 print.png -o smooth.png",
     .run = Descreen,
     .options = kDescreenOptions,
     .depths = kGrayOrTrueColor},
    {.name = "trim",
     .summary = "Cut out a rectangle, given or found",
     .example = "--auto scan.png -o page.png",
     .run = Trim,
     .options = kTrimOptions,
     .depths = kPages,
     .check = CheckTrim},
    {.name = "content",
     .summary = "Tell the rectangle that trim --auto would keep, from the top left",
     .example = "--json scan.png",
     .run = Content,
     .options = kContentOptions,
     .subject = Subject::kFiles,
     .depths = kPages},
};

}  // namespace

std::span<const Operation> ScanOperations() {
  return kRows;
}

}  // namespace client
