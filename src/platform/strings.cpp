// Multibyte strings. The code page is UTF-8, in which no byte of a longer character is below 128: a
// search for an ASCII character, and the folding of ASCII letters, can look at bytes alone.
#include <cstring>

#include <orvo/platform.h>

namespace {

int FoldedCase(unsigned char byte) {
  return byte >= 'A' && byte <= 'Z' ? byte - 'A' + 'a' : byte;
}

}  // namespace

int _mbsicmp(const unsigned char* a, const unsigned char* b) {
  while (*a != 0 && FoldedCase(*a) == FoldedCase(*b)) {
    ++a;
    ++b;
  }
  return FoldedCase(*a) - FoldedCase(*b);
}

int _mbscmp(const unsigned char* a, const unsigned char* b) {
  return std::strcmp(reinterpret_cast<const char*>(a), reinterpret_cast<const char*>(b));
}

unsigned char* _mbsrchr(const unsigned char* text, unsigned character) {
  const auto* const found =
      std::strrchr(reinterpret_cast<const char*>(text), static_cast<int>(character));
  return reinterpret_cast<unsigned char*>(const_cast<char*>(found));
}
