// All pages of a file through one command, or those that --pages picks.
#ifndef APPS_ORVO_PAGES_PAGES_H
#define APPS_ORVO_PAGES_PAGES_H

#include <functional>
#include <string>
#include <vector>

#include "operations.h"

namespace client {

// The pages that a text such as "1,3-5" names, rising and each once; empty when it names none, or
// something else. The last page may be left out: "3-".
std::vector<int> PagesNamed(const std::string& text, int count);

// Whether a command goes through pages: the file has several, or --pages picks, or it is a
// document.
bool HasPages(const Job& job);

// Loads one page after the other into job.image, lets `work` change it, and makes the target of
// them: a TIFF or a PDF of all, or a file each, NAME-1.EXT and so on. Pages that nothing changed
// leave the file as it is.
int DoPages(Job& job, const std::function<int()>& work);

}  // namespace client

#endif  // APPS_ORVO_PAGES_PAGES_H
