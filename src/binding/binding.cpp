// Binding: the modules are loaded from the directory of the toolkit's own file, each of the imaging
// modules only if the one before it loaded, and every entry point is looked up once.
#include <cstring>
#include <span>

#include <orvo/dib_block.h>

#include "binding/module_entries.h"
#include "platform/modules.h"

using namespace orvo;

namespace {

#define ORVO_ENTRY_TEXT(name) #name,
constexpr const char* kPdfNames[] = {ORVO_PDF_ENTRIES(ORVO_ENTRY_TEXT)};
constexpr const char* kKernelNames[] = {ORVO_KERNEL_ENTRIES(ORVO_ENTRY_TEXT)};
constexpr const char* kImageNames[] = {ORVO_IMAGE_ENTRIES(ORVO_ENTRY_TEXT)};
constexpr const char* kFileNames[] = {ORVO_FILE_ENTRIES(ORVO_ENTRY_TEXT)};
#undef ORVO_ENTRY_TEXT

using EntryPoint = void (*)();

void LookUp(void* module, std::span<const char* const> names, EntryPoint* entries) {
  for (const char* const name : names) {
    *entries++ = reinterpret_cast<EntryPoint>(GetProcAddress(module, name));
  }
}

// Position behind the directory in a path buffer: its last separator, / or \, ends the directory.
char* BehindDirectory(char* path) {
  auto* const text = reinterpret_cast<unsigned char*>(path);
  const auto* const slash = _mbsrchr(text, '/');
  const auto* const backslash = _mbsrchr(text, '\\');
  const unsigned char* const last = slash > backslash ? slash : backslash;
  return last == nullptr ? path : path + (last - text) + 1;
}

// Loads a module from the directory in the buffer. Without a directory, or when the path does not
// fit, nothing is loaded: modules are never searched for elsewhere.
void* LoadBeside(char* path, const char* fileName) {
  char* const behind = BehindDirectory(path);
  const auto used = static_cast<std::size_t>(behind - path);
  if (used == 0 || used + std::strlen(fileName) >= MAX_PATH) return nullptr;
  std::strcpy(behind, fileName);  // NOLINT(clang-analyzer-security.insecureAPI.strcpy): fits
  void* const module = LoadLibraryA(path);
  *behind = '\0';
  return module;
}

// The toolkit's own module. Asked while the library is loaded, before anything can move the process
// to another directory.
void* const ownModule = PlatformModuleOf(&ownModule);

void Unload(void*& module) {
  if (module != nullptr) FreeLibrary(module);
  module = nullptr;
}

}  // namespace

CLeadTools::CLeadTools() noexcept {
  char path[MAX_PATH] = {};
  const unsigned length = GetModuleFileNameA(ownModule, path, MAX_PATH);
  if (length == 0 || length >= MAX_PATH) return;
  pdfModule = LoadBeside(path, "PdfLib.dll");
  if (pdfModule != nullptr) LookUp(pdfModule, kPdfNames, moduleEntries);
  GetLTProcAddresses(path);
  LTSetDitheringMode(1);
}

CLeadTools::~CLeadTools() {
  Unload(pdfModule);
  Unload(kernelModule);
  Unload(fileModule);
  Unload(imageModule);
}

void CLeadTools::GetLTProcAddresses(char* path) noexcept {
  struct Step {
    const char* fileName;
    void*& module;
    std::span<const char* const> names;
  };
  const Step steps[] = {{"ltkrn13n.dll", kernelModule, kKernelNames},
                        {"ltimg13n.dll", imageModule, kImageNames},
                        {"ltfil13n.dll", fileModule, kFileNames}};
  EntryPoint* entries = moduleEntries + std::size(kPdfNames);
  for (const Step& step : steps) {
    step.module = LoadBeside(path, step.fileName);
    if (step.module == nullptr) return;
    LookUp(step.module, step.names, entries);
    entries += step.names.size();
  }
}

void* CLeadTools::operator new(std::size_t bytes) noexcept {
  return LocalAlloc(LMEM_ZEROINIT, bytes);
}

void CLeadTools::operator delete(void* memory) noexcept {
  LocalFree(memory);
}

void Modules::ConvertFromDIB(struct_LEAD_Bitmap* bitmap, DibHandle dib) const {
  const auto convert = call<Entry::L_ConvertFromDIB>();
  if (convert == nullptr) return;
  *bitmap = {};
  const LockedImage image(dib);
  if (image) {
    convert(bitmap, reinterpret_cast<const BITMAPINFOHEADER*>(image.bytes()), image.pixels());
  }
}
