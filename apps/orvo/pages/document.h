// Many pictures in one document.
#ifndef APPS_ORVO_PAGES_DOCUMENT_H
#define APPS_ORVO_PAGES_DOCUMENT_H

#include <string>
#include <vector>

#include "document_target.h"
#include "paths.h"
#include "replacement.h"

namespace client {

// Every input gives its pages to the document.
Plan PlanDocument(const std::vector<std::string>& inputs, const Parameters& parameters);

// The document of a whole call on its way to its name.
class CallDocument {
 public:
  explicit CallDocument(const Parameters& parameters);

  // False when nothing can be written there.
  explicit operator bool() const { return bool{result_}; }
  [[nodiscard]] DocumentTarget& pages() { return pages_; }
  // A result code of the toolkit.
  int finish();

 private:
  Replacement result_;
  DocumentTarget pages_;
};

// Makes a document of the pages of the job's source that --pages picks, or of all.
int ConvertToDocument(Job& job);

}  // namespace client

#endif  // APPS_ORVO_PAGES_DOCUMENT_H
