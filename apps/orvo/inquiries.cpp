// Commands that change nothing: they report.
#include "completion.h"
#include "format_list.h"
#include "operations.h"
#include "picture.h"
#include "tiff_pages.h"

namespace client {
namespace {

int Info(Job& job) {
  ORVOIMAGEFILEINFO info{};
  if (const int code = job.toolkit.ImageFileInfo(job.source.c_str(), &info); code != ORVO_OK) {
    return code;
  }
  job.report.set("file", Report::Fields{{"width", info.width},
                                        {"height", info.height},
                                        {"bits", info.bitsPerPixel},
                                        {"x_dpi", info.xResolution},
                                        {"y_dpi", info.yResolution},
                                        {"bytes_on_disk", info.sizeOnDisk},
                                        {"bytes_in_memory", info.sizeInMemory},
                                        {"pages", PageCount(job.source)}});
  const int code = job.toolkit.LoadFile(job.source.c_str(), job.image.receive());
  if (code != ORVO_OK) return code;
  const auto shape = ShapeOf(job.image.get());
  if (!shape) return ORVO_ERR_NO_BITMAP;
  job.report.set("picture", Described(*shape));
  return ORVO_OK;
}

// Missing imaging modules are an answer here, no failure.
int Version(Job& job) {
  LTVERSIONINFO module{};
  module.size = sizeof module;
  ORVOVERSIONINFO info{};
  info.vendorInfo = &module;
  const int code = job.toolkit.GetVersion(&info);
  job.report.set("version", info.version);
  if (code == ORVO_OK) {
    job.report.set("module", std::string(module.product) + " " + module.version);
    job.report.set("codecs", module.codecs);
  } else {
    job.report.set("module", nullptr);
  }
  return code == ORVO_ERR_NO_VENDOR ? ORVO_OK : code;
}

int Completion(Job& job) {
  job.report = CompletionScript();
  return ORVO_OK;
}

constexpr std::string_view kShells[] = {"bash"};
constexpr Option kCompletionOptions[] = {{.name = "shell",
                                          .meaning = "the shell that reads the script",
                                          .kind = ValueKind::kChoice,
                                          .choices = kShells,
                                          .required = true,
                                          .positional = true}};

constexpr Operation kRows[] = {
    {.name = "info",
     .summary = "Tell what image files hold",
     .example = "--json photo.jpg",
     .run = Info,
     .subject = Subject::kFiles,
     .loads = false},
    {.name = "formats",
     .summary = "List the kinds of files that are read and written",
     .example = "--json",
     .run = ListFormats,
     .subject = Subject::kToolkit},
    {.name = "version",
     .summary = "Tell the version of the toolkit and its imaging modules",
     .example = "--json",
     .run = Version,
     .subject = Subject::kToolkit},
    {.name = "completion",
     .summary = "Print a script that completes command lines",
     .example = "bash > /etc/bash_completion.d/orvo",
     .run = Completion,
     .options = kCompletionOptions,
     .subject = Subject::kToolkit},
};

}  // namespace

std::span<const Operation> Inquiries() {
  return kRows;
}

}  // namespace client
