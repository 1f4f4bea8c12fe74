// The operations that come in two forms, as rows: where they stand, how they are called, what they
// take and refuse.
#ifndef TESTS_TABLE_PAIRS_H
#define TESTS_TABLE_PAIRS_H

#include "toolkit_test.h"

namespace table {

// One call of one form.
struct Form {
  COrvoInstance* toolkit;
  std::size_t place;
  DibHandle* image;
  DibHandle* result;  // null: in place
  bool byValue;       // in place the image is passed as it is, not by its address

  template <class... Arguments>
  int operator()(Arguments... arguments) const {
    if (result != nullptr) return CallSlot(toolkit, place, *image, result, arguments...);
    if (byValue) return CallSlot(toolkit, place, *image, arguments...);
    return CallSlot(toolkit, place, image, arguments...);
  }
};

struct Pair {
  std::string name;
  std::size_t toNew, inPlace;
  int (*call)(const Form& form, int number, StatusCallback watch);
  int number;                          // the operation's own argument
  std::vector<int> accepted, refused;  // numbers at the edges of the range
  std::vector<int> depths;
  std::string entry = {}, arguments = {};  // of the module's function; none for own work

  [[nodiscard]] bool takesAny() const { return depths.size() == 7; }
  [[nodiscard]] bool is(const char* other) const { return name == other; }
  // How it differs from the others: the callback, and the result that a call overwrites.
  [[nodiscard]] bool watched() const { return !is("Bits") && !is("Trim"); }
  [[nodiscard]] bool stamps() const { return is("Resolution"); }
  // The toolkit's own that bring 16 and 32 bits to 24 and back.
  [[nodiscard]] bool framed() const { return depths.front() > 1 && depths.back() == 32; }
};

// Those that a module carries out, and the toolkit's own.
const std::vector<Pair>& ModulePairs();
const std::vector<Pair>& OwnPairs();

// Runs one form of an operation; to new into *result.
inline int Perform(COrvoInstance* toolkit, const Pair& pair, DibHandle* image, DibHandle* result,
                   int number, StatusCallback watch = nullptr) {
  const std::size_t place = result != nullptr ? pair.toNew : pair.inPlace;
  return pair.call({toolkit, place, image, result, pair.entry.empty()}, number, watch);
}

}  // namespace table

#endif  // TESTS_TABLE_PAIRS_H
