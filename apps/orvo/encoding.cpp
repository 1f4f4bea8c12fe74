#include "encoding.h"

#include "compression.h"
#include "document_target.h"
#include "file_kind.h"
#include "jpeg_patch.h"
#include "jpeg_source.h"
#include "messages.h"
#include "saving.h"
#include "tiff_pages.h"

namespace client {
namespace {

Strip StripOf(const Job& job) {
  if (!job.parameters.has("strip")) return Strip::kNothing;
  return job.parameters.text("strip") == "all" ? Strip::kAll : Strip::kAllButProfile;
}

// The file without coding anew what did not change: by a way of the command's own, or block by
// block.
bool SaveWithoutLoss(const Job& job, const std::string& path) {
  if (!job.before || job.parameters.has("quality") || job.parameters.has("strip")) return false;
  const Outcome outcome = job.withoutLoss
                              ? job.withoutLoss(path)
                              : PatchJpeg(job.file(), job.before.get(), job.image.get(), path);
  if (outcome.kind != Outcome::Kind::kDone) return false;
  try {
    WipeJpegPreview(path);
    return true;
  } catch (const MetadataFault&) {
    return false;
  }
}

int SaveAsJpeg(const Job& job, const std::string& path) {
  if (!job.parameters.has("quality")) {
    if (const auto manner = MannerOf(job.file())) {
      const int code = SaveJpegLike(*manner, job.image.get(), path);
      if (code != ORVO_ERR_BAD_DEPTH) return code;
    }
  }
  return SaveAsNewJpeg(job, path);
}

int SaveAsTiff(const Job& job, const std::string& path) {
  TiffTarget target(path, orvo::LockedImage(job.image.get()).size());
  const int code = target.add(job.image.get(), TiffCodingFor(job, CompressionFor(job.source)));
  return code == ORVO_OK ? target.finish() : code;
}

int SaveAs(const std::string& kind, Job& job, const std::string& path) {
  if (const int code = MindCompression(job); code != ORVO_OK) return code;
  if (kind == "jpeg") return SaveAsJpeg(job, path);
  if (kind == "tiff") return SaveAsTiff(job, path);
  if (kind == "png") return SaveAsPng(job, path);
  if (kind == "webp") return SaveAsWebp(job, path);
  return job.toolkit.SaveFile(job.image.get(), path.c_str(), 0, job.quality);
}

}  // namespace

MetadataRequest RequestFor(Job& job, const Passage& passage) {
  const Shape& before = passage.before;
  const Shape& after = passage.after;
  return {.source = job.file(),
          .page = job.pageFile.empty() ? passage.page : 1,
          .sourcePlace = job.placeInFile(),
          .strip = StripOf(job),
          .width = after.width,
          .height = after.height,
          .colorsChanged = after.colors == "gray" && before.colors != "gray",
          .inSrgb = passage.inSrgb,
          .newResolution = after.xDotsPerInch != before.xDotsPerInch ||
                           after.yDotsPerInch != before.yDotsPerInch,
          .xDotsPerInch = static_cast<double>(after.xDotsPerInch),
          .yDotsPerInch = static_cast<double>(after.yDotsPerInch)};
}

std::vector<std::string> TakeMetadata(Job& job, const Passage& passage, const std::string& path,
                                      int resultPage, PagePlace* resultPlace) {
  MetadataRequest request = RequestFor(job, passage);
  request.result = path;
  request.resultPage = resultPage;
  request.resultPlace = resultPlace;
  return KeepMetadata(request);
}

void TellLosses(Job& job, const std::vector<std::string>& losses) {
  std::string list;
  for (const std::string& loss : losses) list += (list.empty() ? "not kept: " : "; ") + loss;
  if (list.empty() || list == job.lossesTold) return;
  TellWarning(job.source, list);
  job.lossesTold = list;
}

int Complete(Job& job, const std::string& path, const Passage& passage) {
  try {
    TellLosses(job, TakeMetadata(job, passage, path, 1));
    return ORVO_OK;
  } catch (const MetadataFault& fault) {
    job.hint = "while writing " + job.target + ": " + fault.what();
    return ORVO_ERR_FILE_IO;
  }
}

int Encode(Job& job, const std::string& path) {
  return EncodeAs(KindOfName(job.target), job, path);
}

int EncodeAs(const std::string& kind, Job& job, const std::string& path) {
  if (kind == "jpeg" && SaveWithoutLoss(job, path)) return ORVO_OK;
  if (job.parameters.has("perfect")) {
    job.hint = "it cannot be done without loss";
    return ORVO_ERR_NOT_SUPPORTED;
  }
  if (const int code = MindFurtherPictures(job); code != ORVO_OK) return code;
  if (kind == "pdf") return SaveAsDocument(job, path);
  const int code = SaveAs(kind, job, path);
  const auto shape = ShapeOf(job.image.get());
  if (code != ORVO_OK || !shape || !job.loaded) return code;
  return Complete(job, path, {job.page, *job.loaded, *shape, job.inSrgb});
}

}  // namespace client
