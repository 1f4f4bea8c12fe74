// How many pages a file holds.
#ifndef APPS_ORVO_TIFF_PAGES_H
#define APPS_ORVO_TIFF_PAGES_H

#include <string>

namespace client {

// The pages of a TIFF file, 1 for any other. A chain of pages that runs on without end, or out of
// the file, is counted as far as it goes, to 65535 pages at most.
int PageCount(const std::string& path);

}  // namespace client

#endif  // APPS_ORVO_TIFF_PAGES_H
