// What pictures and pages of a file are, told without decoding them.
#ifndef APPS_ORVO_PAGES_PAGE_REPORTS_H
#define APPS_ORVO_PAGES_PAGE_REPORTS_H

#include "operations.h"

namespace client {

// The picture as it is when loaded. A result code of the toolkit.
int DescribePicture(const std::string& path, Report& picture);

// An entry for each page, as far as the chain can be followed.
Report::List DescribedTiffPages(const std::string& path);

// Of the job's source; a page that cannot be taken out says why. A result code of the toolkit.
int DescribePdfPages(Job& job, Report::List& pages);

}  // namespace client

#endif  // APPS_ORVO_PAGES_PAGE_REPORTS_H
