// The log and the settings that the recording doubles of the imaging modules share with the tests.
// It lives in a library of its own, so that all four doubles and the test program see one log.
#ifndef TESTS_BINDING_DOUBLE_LOG_H
#define TESTS_BINDING_DOUBLE_LOG_H

#include <deque>
#include <map>
#include <string>
#include <vector>

#include "binding/module_contract.h"

using namespace orvo;

#define DOUBLE_API __attribute__((visibility("default")))

namespace doubles {

struct State {
  std::vector<std::string> log;                    // each call, as "function(argument, ...)"
  std::map<std::string, std::deque<int>> answers;  // codes to give, call by call; then success
  std::map<const void*, std::string> names;        // what the log calls a pointer
  std::vector<const void*> bitmaps;                // records in order of appearance: b1, b2 ...
  StatusCallback installed = nullptr;
  bool freshHandles = true;  // a block comes back under another handle than it came under
  int pageCount = 1;         // of every file
};

DOUBLE_API State& TheState();
DOUBLE_API void Reset();

inline std::string Text(int number) {
  return std::to_string(number);
}
inline std::string Text(unsigned number) {
  return std::to_string(number);
}
inline std::string Text(const std::string& text) {
  return text;
}
inline std::string Text(const char* text) {
  return text == nullptr ? "0" : text;
}
DOUBLE_API std::string Text(const void* pointer);
DOUBLE_API std::string Text(const struct_LEAD_Bitmap* bitmap);
inline std::string Text(StatusCallback callback) {
  return Text(reinterpret_cast<const void*>(callback));
}

// Logs a call and gives the code that the test has set for it, success without one.
DOUBLE_API int Answer(const char* function, const std::vector<std::string>& arguments);

template <class... Arguments>
int Called(const char* function, const Arguments&... arguments) {
  return Answer(function, {Text(arguments)...});
}

// What every operation of the doubles does: asks the installed callback once, and on success
// inverts the bytes of all rows, so that a changed image is told from an unchanged one.
DOUBLE_API int Operate(int code, const struct_LEAD_Bitmap* bitmap);

// Puts a block into a bitmap record; a malformed one too, with the measures left 0.
DOUBLE_API void Hold(struct_LEAD_Bitmap* bitmap, DibHandle block);
// A new block with the same bytes, null when it cannot be had.
DOUBLE_API DibHandle CopyOfBlock(DibHandle block);

}  // namespace doubles

#endif  // TESTS_BINDING_DOUBLE_LOG_H
