// Many pictures in one document.
#ifndef APPS_ORVO_DOCUMENT_H
#define APPS_ORVO_DOCUMENT_H

#include <string>
#include <vector>

#include "paths.h"

namespace client {

bool IsDocument(const std::string& path);

// Every input becomes a page of a temporary file beside the document, which is not made yet.
Plan PlanDocument(const std::vector<std::string>& inputs, const Parameters& parameters);

}  // namespace client

#endif  // APPS_ORVO_DOCUMENT_H
