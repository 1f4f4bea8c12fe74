// Preloaded into a program: one of its calls for memory fails. FAILING_CALL is the number of the
// call, FAILING_LASTS is set when those behind it fail too; how many there were goes to the file
// that FAILING_COUNT names.
//
// Spared is what ends the process in libraries that are not ours: their own beginnings, which the
// loader runs (libqpdf, libheif and libhwy throw there), the writing of libqpdf's documents and
// their end, which take memory where they may not throw, and what runs before the program's first
// line, tables of CLI11 among it.
#include <dlfcn.h>
#include <fcntl.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <cstdlib>

extern "C" {

void* __libc_malloc(size_t bytes);
void* __libc_calloc(size_t count, size_t bytes);
void* __libc_realloc(void* memory, size_t bytes);

}  // extern "C"

namespace {

std::atomic<long> calls = 0;
long failing = 0;
bool lasts = false;
std::atomic<int> spared = 1;  // until the program begins

struct Spared {
  Spared() { ++spared; }
  ~Spared() { --spared; }
};

__attribute__((destructor)) void End() {
  const char* const path = std::getenv("FAILING_COUNT");
  ++spared;
  if (path == nullptr) return;
  char text[32];
  const int length = std::snprintf(text, sizeof text, "%ld\n", calls.load());
  const int file = open(path, O_WRONLY | O_CREAT | O_TRUNC, 0600);
  (void)!write(file, text, static_cast<size_t>(length));
  close(file);
}

bool Fails() {
  if (spared > 0) return false;
  const long call = ++calls;
  if (failing == 0 || (lasts ? call < failing : call != failing)) return false;
  errno = ENOMEM;
  return true;
}

}  // namespace

extern "C" {

__attribute__((visibility("default"))) void* malloc(size_t bytes) {
  return Fails() ? nullptr : __libc_malloc(bytes);
}
__attribute__((visibility("default"))) void* calloc(size_t count, size_t bytes) {
  return Fails() ? nullptr : __libc_calloc(count, bytes);
}
__attribute__((visibility("default"))) void* realloc(void* memory, size_t bytes) {
  return Fails() ? nullptr : __libc_realloc(memory, bytes);
}

__attribute__((visibility("default"))) void* dlopen(const char* path, int flags) {
  static auto* const real = reinterpret_cast<decltype(&dlopen)>(dlsym(RTLD_NEXT, "dlopen"));
  const Spared here;
  return real(path, flags);
}

// Of libqpdf: QPDFWriter::write and the end of a QPDF.
#define SPARED(name)                                                        \
  __attribute__((visibility("default"))) void name(void* self) {            \
    const Spared here;                                                      \
    void* const library = dlopen("libqpdf.so.29", RTLD_LAZY | RTLD_NOLOAD); \
    reinterpret_cast<decltype(&name)>(dlsym(library, #name))(self);         \
  }
SPARED(_ZN10QPDFWriter5writeEv)
SPARED(_ZN4QPDFD1Ev)

using Main = int(int count, char** words, char** environment);
static Main* programsMain = nullptr;

static int MainUnderFault(int count, char** words, char** environment) {
  const char* const number = std::getenv("FAILING_CALL");
  failing = number == nullptr ? 0 : std::atol(number);
  lasts = std::getenv("FAILING_LASTS") != nullptr;
  --spared;
  return programsMain(count, words, environment);
}

__attribute__((visibility("default"))) int __libc_start_main(Main* main, int count, char** words,
                                                             void (*init)(), void (*end)(),
                                                             void (*loaderEnd)(), void* stack) {
  programsMain = main;
  return reinterpret_cast<decltype(&__libc_start_main)>(dlsym(RTLD_NEXT, "__libc_start_main"))(
      &MainUnderFault, count, words, init, end, loaderEnd, stack);
}

}  // extern "C"
