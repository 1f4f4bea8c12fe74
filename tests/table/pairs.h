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
  int number = 0;                // the operation's own argument
  std::string moduleCall = {};   // on the face; empty for the toolkit's own work
  std::vector<int> accepted = {}, refused = {};  // numbers at the edges of the range
  std::vector<int> depths = {};
  std::string needs = {};  // entries beside those that every module operation needs
  // How it differs from the other operations of its kind.
  bool watched = true;
  bool bindingsFirst = false;           // are tested before the source
  bool refusedDepthSetsResult = false;  // to the source
  bool failureSetsResult = true;
  bool freesOldResult = true;
  bool noSourceKeepsResult = false;
};

// Those that a module carries out, and the toolkit's own.
const std::vector<Pair>& ModulePairs();
const std::vector<Pair>& OwnPairs();

// Runs one form of an operation; to new into *result.
inline int Perform(COrvoInstance* toolkit, const Pair& pair, DibHandle* image, DibHandle* result,
               int number, StatusCallback watch) {
  const bool own = pair.moduleCall.empty();
  return pair.call({toolkit, result != nullptr ? pair.toNew : pair.inPlace, image, result, own},
                   number, watch);
}

inline std::uint32_t tones[256];  // the negative

}  // namespace table

#endif  // TESTS_TABLE_PAIRS_H
