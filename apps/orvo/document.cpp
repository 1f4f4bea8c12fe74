#include "document.h"

#include <random>

#include "operations.h"
#include "progress.h"
#include "saving.h"

namespace client {
namespace {

namespace fs = std::filesystem;

// The flag of SaveFile that adds a page to a TIFF file.
constexpr int kAppendPage = 1;

int AddPage(Job& job) {
  const int code = job.toolkit.SaveFile(job.image.get(), job.target.c_str(), kAppendPage, 0);
  job.target = job.parameters.text("output");
  return code;
}

int WriteDocument(Job& job) {
  return WriteTarget(job, [&job](const std::string& path) {
    return job.toolkit.ConvertFile(job.source.c_str(), path.c_str(), 0, ReportProgress);
  });
}

std::string CheckDocument(const Parameters& parameters) {
  return IsDocument(parameters.text("output")) ? "" : "the name of --output has to end in .pdf";
}

constexpr Option kOptions[] = {{.name = "output",
                                .meaning = "the document, ending in .pdf; replaced if it exists",
                                .kind = ValueKind::kFile,
                                .required = true,
                                .shortName = 'o'}};

constexpr Operation kRows[] = {
    {.name = "pdf",
     .summary = "Put several pictures into one PDF document, a page each",
     .example = "scan1.jpg scan2.png -o book.pdf",
     .run = AddPage,
     .options = kOptions,
     .subject = Subject::kDocument,
     .check = CheckDocument,
     .finish = WriteDocument}};

}  // namespace

bool IsDocument(const std::string& path) {
  const std::string extension = fs::path(path).extension().string();
  return _mbsicmp(reinterpret_cast<const unsigned char*>(extension.c_str()),
                  reinterpret_cast<const unsigned char*>(".pdf")) == 0;
}

Plan PlanDocument(const std::vector<std::string>& inputs, const Parameters& parameters) {
  const std::string& target = parameters.text("output");
  Plan plan;
  plan.problem = FurtherTargets(inputs).claim(target);
  const std::string pages = target + "." + std::to_string(std::random_device{}()) + ".tif";
  for (const std::string& input : inputs) plan.tasks.push_back({input, pages});
  return plan;
}

std::span<const Operation> DocumentOperations() {
  return kRows;
}

}  // namespace client
