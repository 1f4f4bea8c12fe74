#include "table/running_call.h"

#if !defined(NDEBUG)

#include <cstdio>
#include <mutex>
#include <utility>

namespace orvo {
namespace {

// All calls that run, the latest first. They lie on their threads' stacks, so the list takes no
// memory that could fail.
std::mutex mutex;
RunningCall* running = nullptr;

void Say(const char* what) {
  std::fprintf(stderr, "orvo: two threads %s at the same time\n", what);
}

}  // namespace

RunningCall::RunningCall(const CLeadTools* instance, DibHandle image,
                         const DibHandle* result) noexcept
    : instance_(instance), image_(image), writes_(result != nullptr && *result == image) {
  const std::lock_guard guard(mutex);
  for (const RunningCall* other = running; other != nullptr; other = other->next_) {
    if (other->thread_ == thread_) continue;
    if (other->instance_ == instance_) Say("are in calls of one instance");
    if (image_ == nullptr || other->image_ != image_) continue;
    if (writes_ || other->writes_) Say("work on one image");
  }
  next_ = std::exchange(running, this);
}

RunningCall::~RunningCall() {
  const std::lock_guard guard(mutex);
  RunningCall** link = &running;
  while (*link != this) link = &(*link)->next_;
  *link = next_;
}

}  // namespace orvo

#endif
