// Commands that change nothing: they report.
#include <algorithm>
#include <filesystem>

#include "completion.h"
#include "file_kind.h"
#include "format_list.h"
#include "operations.h"
#include "page_reports.h"

namespace client {
namespace {

// A document is told by its pages.
int InfoOfDocument(Job& job) {
  std::error_code fault;
  const auto bytes = std::filesystem::file_size(job.source, fault);
  Report::List pages;
  if (const int code = DescribePdfPages(job, pages); code != ORVO_OK) return code;
  job.report.set("file",
                 Report::Fields{{"bytes_on_disk", fault ? 0 : bytes}, {"pages", pages.size()}});
  job.report.set("pages", std::move(pages));
  return ORVO_OK;
}

int Info(Job& job) {
  if (KindOfFile(job.source) == "pdf") return InfoOfDocument(job);
  ORVOIMAGEFILEINFO info{};
  if (const int code = job.toolkit.ImageFileInfo(job.source.c_str(), &info); code != ORVO_OK) {
    return code;
  }
  Report::List pages;
  if (KindOfFile(job.source) == "tiff") pages = DescribedTiffPages(job.source);
  const std::size_t count = std::max<std::size_t>(pages.size(), 1);
  job.report.set("file", Report::Fields{{"width", info.width},
                                        {"height", info.height},
                                        {"bits", info.bitsPerPixel},
                                        {"x_dpi", info.xResolution},
                                        {"y_dpi", info.yResolution},
                                        {"bytes_on_disk", info.sizeOnDisk},
                                        {"bytes_in_memory", info.sizeInMemory},
                                        {"pages", count}});
  if (count > 1) job.report.set("pages", std::move(pages));
  Report picture;
  const int code = DescribePicture(job.source, picture);
  job.report.set("picture", std::move(picture));
  return code;
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
