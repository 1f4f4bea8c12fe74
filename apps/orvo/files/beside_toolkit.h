// The client's own libraries, which lie beside the toolkit and are loaded from there alone.
#ifndef APPS_ORVO_FILES_BESIDE_TOOLKIT_H
#define APPS_ORVO_FILES_BESIDE_TOOLKIT_H

#include <string>
#include <string_view>

namespace client {

// The path of a library of this name; empty, which loads nothing, where the toolkit's own path does
// not fit: a path that was cut leads to another folder.
std::string BesideToolkit(std::string_view name);

}  // namespace client

#endif  // APPS_ORVO_FILES_BESIDE_TOOLKIT_H
