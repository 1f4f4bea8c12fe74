#include "document.h"

#include "pages.h"
#include "saving.h"

namespace client {
namespace {

int AddAllPages(Job& job) {
  job.staysAsItIs = true;
  return DoPages(job, [] { return ORVO_OK; });
}

int AddSource(Job& job) {
  if (HasPages(job)) return AddAllPages(job);
  if (const int code = MindOtherPages(job); code != ORVO_OK) return code;
  const int code = job.document->addFirstPage(job);
  job.document->tellLosses(job);
  return code;
}

std::string CheckDocument(const Parameters& parameters) {
  return IsDocument(parameters.text("output")) ? "" : "the name of --output has to end in .pdf";
}

constexpr Option kOptions[] = {
    {.name = "output",
     .meaning = "the document, ending in .pdf; replaced if it exists",
     .kind = ValueKind::kFile,
     .required = true,
     .shortName = 'o'},
    {.name = "title",
     .meaning = "what the document is called; the name of its file "
                "unless given",
     .kind = ValueKind::kText},
    {.name = "author", .meaning = "who has written the document", .kind = ValueKind::kText}};

constexpr Operation kRows[] = {
    {.name = "pdf",
     .summary = "Put pictures into one PDF document, a page each, with their data as they are",
     .example = "scan1.jpg scan2.png -o book.pdf",
     .run = AddSource,
     .options = kOptions,
     .subject = Subject::kDocument,
     .loads = false,
     .check = CheckDocument}};

std::string TextOr(const Parameters& parameters, std::string_view name,
                   const std::string& fallback) {
  return parameters.has(name) ? parameters.text(name) : fallback;
}

}  // namespace

Plan PlanDocument(const std::vector<std::string>& inputs, const Parameters& parameters) {
  const std::string& target = parameters.text("output");
  Plan plan;
  plan.problem = FurtherTargets(inputs).claim(target);
  for (const std::string& input : inputs) plan.tasks.push_back({input, target});
  return plan;
}

CallDocument::CallDocument(const Parameters& parameters)
    : result_(parameters.text("output")),
      pages_(result_.path(), TextOr(parameters, "title", TitleOf(parameters.text("output"))),
             TextOr(parameters, "author", {})) {}

int CallDocument::finish() {
  const int code = pages_.finish();
  return code != ORVO_OK || result_.commit() ? code : ORVO_ERR_FILE_IO;
}

int ConvertToDocument(Job& job) {
  if (HasPages(job)) return AddAllPages(job);
  bool isRead = false;
  const int code = WriteTarget(job, [&](const std::string& path) {
    DocumentTarget document(path, TitleOf(job.target));
    const int added = document.addFirstPage(job);
    document.tellLosses(job);
    isRead = added == ORVO_OK;
    return isRead ? document.finish() : added;
  });
  // The source may be to blame as well as the target.
  if (!isRead) job.hint.clear();
  return code;
}

std::span<const Operation> DocumentOperations() {
  return kRows;
}

}  // namespace client
