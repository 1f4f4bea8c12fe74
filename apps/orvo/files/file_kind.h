// What kind of picture file a file is, or a name asks for.
#ifndef APPS_ORVO_FILES_FILE_KIND_H
#define APPS_ORVO_FILES_FILE_KIND_H

#include <string>

namespace client {

// Two files are of one kind when their kinds, as small words such as "jpeg", are equal. A file is
// told by its first bytes, formats without a mark by their extension; a name by its extension.
std::string KindOfFile(const std::string& path);
std::string KindOfName(const std::string& path);

}  // namespace client

#endif  // APPS_ORVO_FILES_FILE_KIND_H
