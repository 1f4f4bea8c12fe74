// The cycle that every image method runs round its one module call: tests, the image into a module
// bitmap, the call, the image back under a handle.
#ifndef ORVO_BINDING_BITMAP_CYCLE_H
#define ORVO_BINDING_BITMAP_CYCLE_H

#include <orvo/result_codes.h>

#include "binding/module_codes.h"
#include "binding/module_entries.h"

namespace orvo {

// Depths that a method takes.
enum class Depths { kAny, kFourUp, kOneUp };

// How a method's cycle differs from the others'.
struct CycleRules {
  Entry own;                            // the module function that the method calls
  Depths depths = Depths::kFourUp;      // tested before the call
  bool inRange = true;                  // the outcome of the method's parameter test
  bool needsCallbackEntry = true;       // L_SetStatusCallBack has to be bound
  bool bindingsFirst = false;           // bindings are tested before the source handle
  bool refusedDepthSetsResult = false;  // result = source when the depth is refused
  bool failedCallSetsResult = true;     // result = source when the call fails
};

[[nodiscard]] bool DepthIsTaken(Depths depths, int bitsPerPixel) noexcept;

// One image on its way through a module bitmap. After prepare() returned ORVO_OK exactly one of
// refuseDepth, fail and succeed ends the cycle.
class BitmapCycle {
 public:
  BitmapCycle(const CLeadTools& tools, const CycleRules& rules, DibHandle& source,
              DibHandle* result)
      : modules_(tools), rules_(rules), source_(source), result_(result) {}

  // Runs all tests and brings the image into the bitmap. Any code but ORVO_OK is final.
  [[nodiscard]] int prepare();
  void install(StatusCallback callback);

  [[nodiscard]] const Modules& modules() const { return modules_; }
  struct_LEAD_Bitmap* bitmap() { return &bitmap_; }
  [[nodiscard]] bool inPlace() const { return result_ == nullptr; }

  [[nodiscard]] int refuseDepth();
  [[nodiscard]] int fail(int code);
  void reinstallPrevious();
  // Gives the changed image back.
  [[nodiscard]] int succeed();
  // The same with the handle that the method itself took from the bitmap.
  [[nodiscard]] int succeedWith(DibHandle dib);

 private:
  [[nodiscard]] int testBindings() const;
  void release();

  Modules modules_;
  CycleRules rules_;
  DibHandle& source_;
  DibHandle* result_;
  StatusCallback previous_ = nullptr;
  struct_LEAD_Bitmap bitmap_{};
};

// The whole cycle round `call`, which takes the module and the bitmap and gives a module code.
template <class Call>
int RunCycle(const CLeadTools& tools, const CycleRules& rules, DibHandle& source, DibHandle* result,
             StatusCallback callback, const Call& call) {
  BitmapCycle cycle(tools, rules, source, result);
  if (const int code = cycle.prepare(); code != ORVO_OK) return code;
  cycle.install(callback);
  const int moduleCode = call(cycle.modules(), cycle.bitmap());
  if (moduleCode != kModuleSuccess) return cycle.fail(MapReturnCodeLT2ORVO(moduleCode));
  cycle.reinstallPrevious();
  return cycle.succeed();
}

}  // namespace orvo

#endif  // ORVO_BINDING_BITMAP_CYCLE_H
