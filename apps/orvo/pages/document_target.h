// A PDF document that is made page by page.
#ifndef APPS_ORVO_PAGES_DOCUMENT_TARGET_H
#define APPS_ORVO_PAGES_DOCUMENT_TARGET_H

#include <memory>
#include <set>
#include <string>

#include "documents/document_maker.h"
#include "operations.h"

namespace client {

struct DocumentMetadata;

// Whether a file of this name is a PDF document.
bool IsDocument(const std::string& path);
// The name that a document has unless it is given another.
std::string TitleOf(const std::string& path);

// Pages are as large as their resolution makes them; a pixel is a point when there is none. All
// give a result code of the toolkit.
class DocumentTarget {
 public:
  // Writes at `path`, once all pages are there; until then they wait in the same folder.
  DocumentTarget(std::string path, std::string title, std::string author = {});

  // Adds a page of the job's source as it is, its data too as far as documents can hold them. After
  // a failure the picture may still be added: some kinds of file are read by the toolkit alone, and
  // it makes the best of faulty faxes.
  int addPage(Job& job, int page);
  // The same of the first page, one way or the other.
  int addFirstPage(Job& job);
  // Adds job.image, which came of the source's page job.page, without loss.
  int addPicture(Job& job);
  // Says what could not be kept of the source of the pages since the last call.
  void tellLosses(Job& job);
  int finish();

 private:
  int begin();
  void note(DocumentMetadata& metadata, const modules::PageFacts& facts);

  std::string path_;
  std::string title_;
  std::string author_;
  std::unique_ptr<modules::DocumentMaker> maker_;
  std::set<std::string> losses_;
  bool laidOnGround_ = false;
  int narrowedFrom_ = 0;
};

// Makes a document of job.image, or of the source's page that it still is.
int SaveAsDocument(Job& job, const std::string& path);

}  // namespace client

#endif  // APPS_ORVO_PAGES_DOCUMENT_TARGET_H
