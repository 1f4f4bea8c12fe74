// The sixty operations of the table as calls of one shape, for programs that put any of them on any
// picture: with faults, at random, from threads, or with made-up bytes.
#ifndef TESTS_STRESS_EVERY_OPERATION_H
#define TESTS_STRESS_EVERY_OPERATION_H

#include <array>
#include <span>
#include <string>

#include <orvo/orvo.h>

namespace stress {

// What a call works on. Files are read from source and written to target.
struct Call {
  COrvoInstance& toolkit;
  DibHandle* image;
  DibHandle* result;  // of those that make a picture; the caller frees what it receives
  std::array<int, 4> numbers;
  std::string source, target;
  const char* converter = "/no/such/converter";
  StatusCallback watch = nullptr;
};

enum class Form {
  kToNew,    // a picture from the image
  kInPlace,  // the image becomes it
  kMeasure,  // figures from the image; saving it counts here
  kFile,     // no image
};

// A number that an operation takes: an everyday one, and the range that is accepted.
struct Number {
  int usual, low, high;
};

struct Operation {
  const char* name;
  Form form;
  bool moves;  // in place: the image may come back under another handle
  std::array<Number, 4> numbers;
  int (*call)(const Call& call);

  [[nodiscard]] std::array<int, 4> usual() const {
    return {numbers[0].usual, numbers[1].usual, numbers[2].usual, numbers[3].usual};
  }
};

// In the order of the table.
std::span<const Operation> EveryOperation();

}  // namespace stress

#endif  // TESTS_STRESS_EVERY_OPERATION_H
