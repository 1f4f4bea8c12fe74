// What comes first in an input of block_fuzz: what is done to the block behind it.
#ifndef TESTS_FUZZ_RECIPE_H
#define TESTS_FUZZ_RECIPE_H

#include <cstdint>

namespace fuzz {

// Choices of an input, by bits.
inline constexpr unsigned kAsItComes = 1;    // the block's header is not made sound
inline constexpr unsigned kMiddleLevel = 2;  // beside the plain level stands 3, not the highest

// Any value of any field is taken.
struct Recipe {
  std::uint8_t operation = 0;
  std::uint8_t choices = 0;
  std::uint8_t dithering = 0;
  std::uint8_t kind = 0;  // of a file to save in
  std::uint16_t numbers[4] = {};
};

}  // namespace fuzz

#endif  // TESTS_FUZZ_RECIPE_H
