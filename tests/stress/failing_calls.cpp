// In a file of its own: compilers that see new and its callers together mistake the free for a
// mismatch.
#include "failing_calls.h"

#include <dlfcn.h>
#include <execinfo.h>

#include <algorithm>
#include <cstdlib>
#include <new>
#include <span>
#include <string_view>

#include <orvo/platform.h>

namespace {

stress::Fault armed;
int due = 0;    // the number of the call that is to fail; 0 when none is
int calls = 0;  // so far
int failed = 0;

// Functions of other libraries that take memory where they may not throw, and end the process when
// it fails: how libqpdf writes a document, and its end.
constexpr std::string_view kSpared[] = {"_ZN10QPDFWriter5writeEv", "_ZN4QPDFD1Ev", "_ZN4QPDFD2Ev"};

bool IsSpared() {
  void* frames[64];
  for (const void* frame : std::span(frames, static_cast<std::size_t>(backtrace(frames, 64)))) {
    Dl_info info;
    if (dladdr(frame, &info) == 0 || info.dli_sname == nullptr) continue;
    if (std::ranges::find(kSpared, info.dli_sname) != std::end(kSpared)) return true;
  }
  return false;
}

// The turn passes on where a failure would end the process.
bool Fails(stress::Fault fault) {
  if (due == 0 || fault != armed || ++calls < due) return false;
  if (fault == stress::Fault::kNew && IsSpared()) return false;
  due = 0;
  failed = calls;
  return true;
}

// The platform layer's own function, behind the one of the same name that this program defines.
template <class Function>
Function* Real(const char* name) {
  return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

}  // namespace

void stress::Arm(Fault fault, int n) noexcept {
  armed = fault;
  due = n;
  calls = failed = 0;
}

int stress::Disarm() noexcept {
  due = 0;
  return failed;
}

void* GlobalAlloc(unsigned flags, size_t bytes) {
  static auto* const real = Real<decltype(GlobalAlloc)>("GlobalAlloc");
  return Fails(stress::Fault::kAllocation) ? nullptr : real(flags, bytes);
}
void* LocalAlloc(unsigned flags, size_t bytes) {
  static auto* const real = Real<decltype(LocalAlloc)>("LocalAlloc");
  return Fails(stress::Fault::kAllocation) ? nullptr : real(flags, bytes);
}
void* GlobalLock(void* handle) {
  static auto* const real = Real<decltype(GlobalLock)>("GlobalLock");
  return Fails(stress::Fault::kLock) ? nullptr : real(handle);
}
void* LoadLibraryA(const char* path) {
  static auto* const real = Real<decltype(LoadLibraryA)>("LoadLibraryA");
  return Fails(stress::Fault::kLoading) ? nullptr : real(path);
}
void* GetProcAddress(void* module, const char* name) {
  static auto* const real = Real<decltype(GetProcAddress)>("GetProcAddress");
  return Fails(stress::Fault::kLoading) ? nullptr : real(module, name);
}

void* operator new(std::size_t bytes) {
  void* const memory = Fails(stress::Fault::kNew) ? nullptr : std::malloc(bytes == 0 ? 1 : bytes);
  if (memory == nullptr) throw std::bad_alloc();
  return memory;
}
void operator delete(void* memory) noexcept {
  std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
  std::free(memory);
}
