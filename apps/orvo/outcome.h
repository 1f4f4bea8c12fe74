// What came of a way without loss that not every file can go.
#ifndef APPS_ORVO_OUTCOME_H
#define APPS_ORVO_OUTCOME_H

#include <cstdint>
#include <string>

namespace client {

struct Outcome {
  enum class Kind : std::uint8_t {
    kDone,
    kNotPossible,  // this way is not open to the file; others may be
    kFailed,       // a file could not be read or written, or memory ran out
  };
  Kind kind = Kind::kDone;
  std::string reason;  // in words, for all but kDone
};

}  // namespace client

#endif  // APPS_ORVO_OUTCOME_H
