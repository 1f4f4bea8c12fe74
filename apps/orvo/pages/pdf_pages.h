// The pages of documents that are a picture each.
#ifndef APPS_ORVO_PAGES_PDF_PAGES_H
#define APPS_ORVO_PAGES_PDF_PAGES_H

#include "page_source.h"

namespace client {

// Of the job's source. While it lives, it keeps a page at a time as a file beside the target.
int OpenPdfPages(Job& job, std::unique_ptr<PageSource>& source);

// 1 for documents that cannot be read.
int PdfPageCount(const std::string& path);

// Goes through pages of the source's document by `step`, and writes the document with what changed
// in the place of what was; nothing else of it changes. Pages that are not listed stay in place,
// and are left out of another file.
int IntoDocument(Job& job, PdfFile& document, const std::vector<int>& pages,
                 const std::function<int(int page)>& step);

}  // namespace client

#endif  // APPS_ORVO_PAGES_PDF_PAGES_H
