// Commands that change size, place and resolution.
#include <algorithm>
#include <cmath>

#include "document.h"
#include "encoding.h"
#include "file_kind.h"
#include "jpeg_turn.h"
#include "opacity.h"
#include "operations.h"
#include "pages.h"
#include "picture.h"
#include "progress.h"
#include "saving.h"
#include "source_colors.h"

namespace client {
namespace {

constexpr int kMostPixels = 65535;  // of a width or height
constexpr int kMostDotsPerInch = 10000;

constexpr std::string_view kMethods[] = {"nearest", "bilinear", "best"};
// What the toolkit calls the methods, in the same order.
constexpr unsigned kMethodFlags[] = {0, 2, 4};

constexpr int kQuarter = 90;  // degrees

// A quarter turn of a JPEG file only changes the places of what is coded. Where an edge does not
// end with a whole block, the options say what becomes of it.
int Rotate(Job& job) {
  const int angle = job.parameters.whole("angle");
  job.moved = true;
  if (angle % kQuarter == 0 && KindOfFile(job.file()) == "jpeg") {
    const OddEdge edge = job.parameters.has("trim-edge") ? OddEdge::kTrim : OddEdge::kKeep;
    job.withoutLoss = [&job, angle, edge](const std::string& path) {
      return TurnJpeg(job.file(), {.quarterTurnsClockwise = angle / kQuarter}, edge, path);
    };
  }
  return job.toolkit.RotateInPlace(job.image.address(), job.parameters.whole("angle"),
                                   ReportProgress);
}

// The side that keeps the picture's proportions, at least one pixel.
int Proportional(int side, int otherNow, int otherThen) {
  const double exact = static_cast<double>(side) * otherThen / otherNow;
  return static_cast<int>(std::lround(std::clamp<double>(exact, 1, kMostPixels)));
}

int Resize(Job& job) {
  const auto shape = ShapeOf(job.image.get());
  if (!shape) return ORVO_ERR_NO_BITMAP;
  const Parameters& asked = job.parameters;
  const int width = asked.has("width")
                        ? asked.whole("width")
                        : Proportional(shape->width, shape->height, asked.whole("height"));
  const int height = asked.has("height") ? asked.whole("height")
                                         : Proportional(shape->height, shape->width, width);
  const unsigned method = kMethodFlags[asked.whole("method")];
  return job.toolkit.ChangeSizeInPlace(job.image.address(), width, height, method, ReportProgress);
}

std::string CheckResize(const Parameters& parameters) {
  if (parameters.has("width") || parameters.has("height")) return {};
  return "--width or --height is needed";
}

int Resolution(Job& job) {
  const std::vector<double>& dpi = job.parameters.numbers("dpi");
  const int code =
      job.toolkit.ChangeResolutionInPlace(job.image.address(), static_cast<int>(dpi.front()),
                                          static_cast<int>(dpi.back()), ReportProgress);
  if (code == ORVO_ERR_NOT_SUPPORTED) job.hint = "the picture has no resolution of its own";
  return code;
}

int Thumbnail(Job& job) {
  if (const int code = MindOtherPages(job); code != ORVO_OK) return code;
  const int code = job.toolkit.CreateThumbnailFromFile(job.source.c_str(), job.image.receive(),
                                                       job.parameters.whole("size", 0),
                                                       job.parameters.whole("size", 1));
  // Nothing that the file holds beside the picture goes with it.
  if (code == ORVO_OK) BringToSrgb(job);
  return code;
}

// The conversion of whole files keeps what a loaded picture would not, such as that a file tells no
// resolution. It knows no compression and no WebP, and lays nothing on a background.
bool GoesByFile(const Job& job, const ORVOIMAGEFILEINFO& info) {
  const std::string kind = KindOfName(job.target);
  if (job.parameters.has("compression") || (kind == "png" && job.parameters.has("png-level"))) {
    return false;
  }
  return !IsSameKind(job) && kind != "webp" && kind != "tiff" &&
         (info.bitsPerPixel != 32 || HoldsOpacity(kind)) && !job.inSrgb && !NeedsSrgb(job);
}

int ConvertByFile(Job& job, const ORVOIMAGEFILEINFO& info) {
  const int code = WriteTarget(job, [&](const std::string& path) {
    const int converted =
        job.toolkit.ConvertFile(job.source.c_str(), path.c_str(), job.quality, ReportProgress);
    if (converted != ORVO_OK) return converted;
    const Shape shape{info.width, info.height, info.bitsPerPixel, 0, 0, {}};
    return Complete(job, path, {1, shape, shape});
  });
  return Interrupted() ? ORVO_ERR_CANCELLED : code;
}

// What is refused as a whole goes through memory, where more is known of what went wrong.
int Convert(Job& job) {
  if (KindOfFile(job.source) == "pdf" && MayStayAsItIs(job)) {
    job.written = true;
    return KeepAsItIs(job);
  }
  if (IsDocument(job.target)) {
    job.written = true;
    return ConvertToDocument(job);
  }
  if (HasPages(job) && !MayStayAsItIs(job)) {
    job.written = true;
    return DoPages(job, [] { return ORVO_OK; });
  }
  if (!MayStayAsItIs(job)) TakeInksByProfile(job);
  ORVOIMAGEFILEINFO info{};
  (void)job.toolkit.ImageFileInfo(job.source.c_str(), &info);
  if (GoesByFile(job, info)) {
    if (const int code = MindSampleBits(job); code != ORVO_OK) return code;
    if (const int code = MindFurtherPictures(job); code != ORVO_OK) return code;
    const int code = ConvertByFile(job, info);
    job.written = code == ORVO_OK;
    job.hint.clear();  // the source may be to blame as well as the target
    // Further pages would be lost on the way through a loaded picture.
    if (job.written || code == ORVO_ERR_NO_VENDOR || code == ORVO_ERR_CANCELLED || HasPages(job)) {
      return code;
    }
  }
  if (!job.image) {
    const int code = job.toolkit.LoadFile(job.source.c_str(), job.image.receive());
    if (code != ORVO_OK) return code;
  }
  job.loaded = ShapeOf(job.image.get());
  if (!MayStayAsItIs(job)) return ORVO_OK;
  job.written = true;
  return KeepAsItIs(job);
}

constexpr Option kRotateOptions[] = {
    {.name = "angle",
     .meaning = "whole degrees, clockwise",
     .least = -360,
     .most = 360,
     .required = true},
    {.name = "trim-edge",
     .meaning = "of a JPEG turned by quarters: drop the edge that "
                "could not be turned without loss",
     .kind = ValueKind::kFlag},
    {.name = "perfect",
     .meaning = "of a JPEG: refuse what cannot be done without loss",
     .kind = ValueKind::kFlag}};
constexpr Option kResizeOptions[] = {
    {.name = "width", .meaning = "in pixels", .least = 1, .most = kMostPixels},
    {.name = "height", .meaning = "in pixels", .least = 1, .most = kMostPixels},
    {.name = "method",
     .meaning = "quality against speed",
     .kind = ValueKind::kChoice,
     .choices = kMethods,
     .fallback = "best"}};
constexpr Option kResolutionOptions[] = {{.name = "dpi",
                                          .meaning = "dots per inch, across and down",
                                          .least = 1,
                                          .most = kMostDotsPerInch,
                                          .fewest = 1,
                                          .atMost = 2,
                                          .required = true}};
constexpr Option kThumbnailOptions[] = {{.name = "size",
                                         .meaning = "width and height in pixels",
                                         .least = 1,
                                         .most = kMostPixels,
                                         .fewest = 2,
                                         .atMost = 2,
                                         .separator = 'x',
                                         .fallback = "160x160"}};

constexpr Operation kRows[] = {
    {.name = "convert",
     .summary = "Convert to another file format",
     .example = "--to png *.tif -o pages/",
     .run = Convert,
     .loads = false,
     .inPlace = false,
     .takesPages = false},
    {.name = "rotate",
     .summary = "Turn clockwise; the picture grows, its new corners are white",
     .example = "--angle 90 photo.jpg -o upright.jpg",
     .run = Rotate,
     .options = kRotateOptions},
    {.name = "resize",
     .summary = "Change the number of pixels; one side alone keeps the proportions",
     .example = "--width 1200 photo.jpg -o web.jpg",
     .run = Resize,
     .options = kResizeOptions,
     .check = CheckResize},
    {.name = "resolution",
     .summary = "Resample to a resolution, keeping the size on paper",
     .example = "--dpi 150 scan.tif -o small.tif",
     .run = Resolution,
     .options = kResolutionOptions,
     .depths = kFromFourBits},
    {.name = "thumbnail",
     .summary = "Make a small picture of exactly one size, on white",
     .example = "--size 120x90 *.jpg -o thumbs/",
     .run = Thumbnail,
     .options = kThumbnailOptions,
     .loads = false,
     .inPlace = false,
     .takesPages = false},
};

}  // namespace

std::span<const Operation> GeometryOperations() {
  return kRows;
}

}  // namespace client
