// What the processor can do, and whether the system keeps the registers that it takes.
#include "platform/vector_level.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <initializer_list>

#if defined(__x86_64__) && defined(__GNUC__)
#include <cpuid.h>
#endif

namespace {

#if defined(__x86_64__) && defined(__GNUC__)

struct Registers {
  unsigned a = 0;
  unsigned b = 0;
  unsigned c = 0;
  unsigned d = 0;
};

// All zero when the processor has no such leaf.
Registers Leaf(unsigned leaf) {
  Registers found;
  __get_cpuid_count(leaf, 0, &found.a, &found.b, &found.c, &found.d);
  return found;
}

bool HasAll(std::uint64_t bits, std::uint64_t wanted) {
  return (bits & wanted) == wanted;
}

constexpr unsigned Bits(std::initializer_list<int> numbers) {
  unsigned bits = 0;
  for (const int number : numbers) bits |= 1U << number;
  return bits;
}

// The registers that the system saves when it switches threads.
std::uint64_t SavedRegisters() {
  std::uint32_t low = 0;
  std::uint32_t high = 0;
  __asm__("xgetbv" : "=a"(low), "=d"(high) : "c"(0));
  return std::uint64_t{high} << 32 | low;
}

int SupportedLevel() {
  // SSE3, SSSE3, FMA, CMPXCHG16B, SSE4.1, SSE4.2, MOVBE, POPCNT, XSAVE in use, AVX, F16C
  constexpr unsigned kBasic = Bits({0, 9, 12, 13, 19, 20, 22, 23, 27, 28, 29});
  constexpr unsigned kAvx2 = Bits({3, 5, 8});               // BMI1, AVX2, BMI2
  constexpr unsigned kAvx512 = Bits({16, 17, 28, 30, 31});  // F, DQ, CD, BW, VL
  constexpr unsigned kExtended = Bits({0, 5});              // LAHF, LZCNT
  constexpr std::uint64_t kVectors = Bits({1, 2});          // XMM, YMM
  constexpr std::uint64_t kLongVectors = Bits({5, 6, 7});   // masks, ZMM
  const Registers features = Leaf(7);
  if (!HasAll(Leaf(1).c, kBasic) || !HasAll(features.b, kAvx2) ||
      !HasAll(Leaf(0x80000001).c, kExtended) || !HasAll(SavedRegisters(), kVectors)) {
    return 1;
  }
  return HasAll(features.b, kAvx512) && HasAll(SavedRegisters(), kLongVectors) ? 4 : 3;
}

#else

int SupportedLevel() {
  return 1;
}

#endif

int VectorLevel() {
  const int supported = SupportedLevel();
#if defined(ORVO_FAULT_INJECTION)
  // Never above what the processor has.
  const char* const wanted = std::getenv("ORVO_VECTOR_LEVEL");
  if (wanted != nullptr) return std::min(std::atoi(wanted), supported);
#endif
  return supported;
}

}  // namespace

#if defined(ORVO_FAULT_INJECTION)
int PlatformVectorLevel = VectorLevel();
#else
const int PlatformVectorLevel = VectorLevel();
#endif
