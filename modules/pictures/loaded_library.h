// Libraries that are loaded when the first file that needs them is met: what reads a JPEG never
// waits for them.
#ifndef MODULES_PICTURES_LOADED_LIBRARY_H
#define MODULES_PICTURES_LOADED_LIBRARY_H

#include "common/guard.h"
#include "platform/modules.h"

namespace modules {

// Stays loaded to the end of the process. Without the library its files are of an unknown kind.
class LoadedLibrary {
 public:
  explicit LoadedLibrary(const char* name) : handle_(LoadLibraryA(name)) {
    Require(handle_, kFileFormatNotRead);
  }

  template <class Call>
  [[nodiscard]] Call get(const char* name) const {
    void* const address = reinterpret_cast<void*>(GetProcAddress(handle_, name));
    Require(address, kFileFormatNotRead);
    return reinterpret_cast<Call>(address);
  }

 private:
  void* handle_;
};

}  // namespace modules

// A member that calls the function of the same name in the member `library`.
// NOLINTNEXTLINE(bugprone-macro-parentheses): a member's name stands in none
#define ORVO_LIBRARY_CALL(name) decltype(&::name) name = library.get<decltype(&::name)>(#name)

#endif  // MODULES_PICTURES_LOADED_LIBRARY_H
