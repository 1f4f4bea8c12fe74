// The image methods of the binding as rows: how to call each, and how each differs from the others.
#ifndef TESTS_BINDING_METHODS_H
#define TESTS_BINDING_METHODS_H

#include <ostream>
#include <string>
#include <vector>

#include <orvo/CLeadTools.h>

namespace binding {

struct Method {
  using Call = int (*)(CLeadTools&, DibHandle& source, DibHandle* result, int number,
                       StatusCallback);

  std::string name;
  std::string own;         // the module function that does the work
  std::string moduleCall;  // its arguments, as logged for `number` and a picture of 7 x 5
  Call call;
  int number = 0;                  // the method's own argument, where it has one
  std::vector<int> accepted = {};  // at the edges of its range
  std::vector<int> outOfRange = {};
  std::vector<int> refusedDepths = {1, 2};
  bool takesCallback = true;
  bool needsCallbackEntry = true;
  bool bindingsFirst = false;  // tested before the source handle
  bool refusedDepthSetsResult = false;
  bool depthTestedAfterCall = false;
  bool failureSetsResult = true;
  bool freesOldResult = true;
  bool stampsResolution = false;  // 150 by 100 dots per inch
  std::string givesBackInPlace = "L_ChangeToDIB(b1)";
  std::vector<std::string> givesBackNew = {"L_ChangeToDIB(b1)"};
};

inline std::ostream& operator<<(std::ostream& out, const Method& method) {
  return out << method.name;
}

const std::vector<Method>& Methods();
const Method& MethodNamed(const std::string& name);

// The table that LTRemapIntensity is given; the log calls it "table".
inline constexpr std::uint32_t kToneTable[256] = {};

}  // namespace binding

#endif  // TESTS_BINDING_METHODS_H
