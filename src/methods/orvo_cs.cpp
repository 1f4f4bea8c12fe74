// The life of a COrvoCS.
#include <orvo/COrvoCS.h>

using namespace orvo;

COrvoCS::COrvoCS() noexcept = default;

COrvoCS::~COrvoCS() {
  if (converterModule != nullptr) FreeLibrary(converterModule);
}

void COrvoCS::CSSetLT(CLeadTools* tools) noexcept {
  leadTools = tools;
}

void* COrvoCS::operator new(std::size_t bytes) noexcept {
  return LocalAlloc(LMEM_ZEROINIT, bytes);
}

void COrvoCS::operator delete(void* memory) noexcept {
  LocalFree(memory);
}
