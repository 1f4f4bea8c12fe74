// Builds without NDEBUG notice calls that overlap though they must not, and say so on standard
// error: two threads in calls of one instance, its end among them, and two at work on one image,
// unless both only read it. Calls within calls are the same thread's. Other builds know none of it.
#ifndef ORVO_TABLE_RUNNING_CALL_H
#define ORVO_TABLE_RUNNING_CALL_H

#include <orvo/dib.h>

#if !defined(NDEBUG)
#include <thread>
#endif

class CLeadTools;

namespace orvo {

// Lives as long as a call of an instance, which is told by its binding. The call writes its image
// when the result handle holds it.
class [[maybe_unused]] RunningCall {
 public:
#if defined(NDEBUG)
  constexpr explicit RunningCall(const CLeadTools* /*instance*/, DibHandle /*image*/ = nullptr,
                                 const DibHandle* /*result*/ = nullptr) noexcept {}
#else
  explicit RunningCall(const CLeadTools* instance, DibHandle image = nullptr,
                       const DibHandle* result = nullptr) noexcept;
  ~RunningCall();
  RunningCall(const RunningCall&) = delete;
  RunningCall& operator=(const RunningCall&) = delete;

 private:
  const std::thread::id thread_ = std::this_thread::get_id();
  const CLeadTools* const instance_;
  const DibHandle image_;
  const bool writes_;
  RunningCall* next_ = nullptr;
#endif
};

}  // namespace orvo

#endif  // ORVO_TABLE_RUNNING_CALL_H
