// Documents written anew with other pictures on their pages.
#include <cmath>

#include "encoding.h"
#include "file_kind.h"
#include "messages.h"
#include "pdf_file.h"
#include "pdf_pages.h"
#include "replacement.h"
#include "saving.h"

namespace client {
namespace {

// On paper, in points; pictures that tell no resolution have their source's.
struct Extent {
  double width;
  double height;
  double pixel;  // the larger side of one
};
Extent ExtentOf(DibHandle picture, DibHandle before) {
  const BITMAPINFOHEADER old = orvo::LockedImage(before).header();
  const BITMAPINFOHEADER header = orvo::LockedImage(picture).header();
  // Whole dots per inch were rounded on their way into the header.
  const auto pointsOf = [](std::int32_t own, std::int32_t other) {
    constexpr double kPointsPerInch = 72;
    const std::int32_t metre = own > 0 ? own : other;
    if (metre <= 0) return 1.0;
    const int dots = orvo::DotsPerInch(metre);
    const bool isWhole = orvo::PixelsPerMetre(dots) == metre;
    return kPointsPerInch / (isWhole ? dots : metre * orvo::kMetresPerInch);
  };
  const double across = pointsOf(header.biXPelsPerMeter, old.biXPelsPerMeter);
  const double down = pointsOf(header.biYPelsPerMeter, old.biYPelsPerMeter);
  return {header.biWidth * across, std::abs(header.biHeight) * down, std::max(across, down)};
}

bool AreAsLarge(const Extent& one, const Extent& other) {
  constexpr double kRounding = 0.75;  // of a pixel
  const double near = std::max(one.pixel, other.pixel) * kRounding;
  return std::abs(one.width - other.width) < near && std::abs(one.height - other.height) < near;
}

// What lies over the picture no longer lies on what it means.
int MindOverlays(Job& job, const PdfPage& page) {
  if (!(page.hasHiddenText || page.hasAnnotations)) return ORVO_OK;
  const std::string what = page.hasHiddenText ? "its invisible text" : "its annotations";
  if (job.parameters.has("allow-loss")) return ORVO_OK;
  if (job.parameters.has("in-place")) {
    job.hint = what + " would be lost; --allow-loss does it";
    return ORVO_ERR_NOT_SUPPORTED;
  }
  TellWarning(job.source, "page " + std::to_string(job.page) + ": not kept: " + what);
  return ORVO_OK;
}

int ShowChanged(Job& job, PdfFile& document, const std::string& path) {
  const bool isJpeg = KindOfFile(job.file()) == "jpeg";
  const Extent before = ExtentOf(job.before.get(), job.before.get());
  const Extent after = ExtentOf(job.image.get(), job.before.get());
  const bool stays = AreAsLarge(before, after) && !job.moved;
  int code = MindSampleBits(job);
  if (code == ORVO_OK && !stays) code = MindOverlays(job, document.page(job.page));
  if (code == ORVO_OK) code = EncodeAs(isJpeg ? "jpeg" : "tiff", job, path);
  if (code != ORVO_OK) return code;
  if (stays) {
    document.exchange(job.page, isJpeg, path);
  } else {
    document.remake(job.page, isJpeg, path, after.width, after.height);
  }
  return ORVO_OK;
}

int WriteDocument(Job& job, PdfFile& document, const std::vector<int>& pages,
                  const std::function<int(int page)>& step, bool& changed) {
  Replacement result(job.target);
  if (!result) return ORVO_ERR_FILE_OPEN;
  const std::string picture =
      std::filesystem::path(result.path()).replace_filename("picture").string();
  const bool inPlace = job.parameters.has("in-place");
  for (const int page : pages) {
    if (const int code = step(page); code != ORVO_OK) return code;
    if (AreTheSame(job.before.get(), job.image.get())) continue;
    changed = true;
    if (const int code = ShowChanged(job, document, picture); code != ORVO_OK) {
      job.hint.insert(0, "page " + std::to_string(page) + (job.hint.empty() ? "" : ": "));
      return code;
    }
  }
  if (!changed && (inPlace || MayStayAsItIs(job))) return KeepAsItIs(job);
  if (!inPlace) document.keepOnly(pages);
  document.write(result.path());
  return result.commit() ? ORVO_OK : ORVO_ERR_FILE_IO;
}

}  // namespace

int IntoDocument(Job& job, PdfFile& document, const std::vector<int>& pages,
                 const std::function<int(int page)>& step) {
  if (job.parameters.has("strip")) {
    job.hint = "--strip is not for documents";
    return ORVO_ERR_NOT_SUPPORTED;
  }
  bool changed = false;
  int code = ORVO_OK;
  try {
    if (job.parameters.has("in-place") && document.isSigned() &&
        !job.parameters.has("allow-loss")) {
      job.hint = "its signature would no longer hold; --allow-loss does it";
      return ORVO_ERR_NOT_SUPPORTED;
    }
    code = WriteDocument(job, document, pages, step, changed);
  } catch (const PdfFault& fault) {
    job.hint = fault.what();
    code = ORVO_ERR_FILE_IO;
  }
  if (code != ORVO_OK && job.hint.empty()) job.hint = "while writing " + job.target;
  if (code == ORVO_OK && changed) job.changed = true;
  return code;
}

}  // namespace client
