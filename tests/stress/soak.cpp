// Operations at random on two toolkits in turn, for as long as wanted. What they leave behind is
// nothing: no block, no lock, no descriptor, no stray file,
// no memory.
//
//   soak [OPERATIONS] [SEED]
#include <malloc.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>

#include "platform/fault_injection.h"
#include "random_work.h"

namespace {

namespace fs = std::filesystem;
using stress::RandomWork;

// What the libraries under the modules keep for later, growing less and less, and what a heap with
// holes in it cannot give back.
constexpr long kHeapBytes = 1 << 20;
constexpr long kResidentBytes = 8 << 20;

struct State {
  long blocks, locks, descriptors, heap, resident;
};

long ResidentBytes() {
  long pages = 0;
  std::ifstream("/proc/self/statm") >> pages >> pages;
  return pages * sysconf(_SC_PAGESIZE);
}

// Under the sanitizers, and in valgrind, whose heap counts nothing, memory is kept for a while on
// purpose, and leaks are told by themselves.
bool MemoryTells() {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
  return false;
#else
  return mallinfo2().uordblks != 0;
#endif
}

State Measure() {
  malloc_trim(0);
  const struct mallinfo2 heap = mallinfo2();
  return {static_cast<long>(PlatformLiveBlocks()), static_cast<long>(PlatformHeldLocks()),
          std::distance(fs::directory_iterator("/proc/self/fd"), fs::directory_iterator()),
          static_cast<long>(heap.uordblks + heap.hblkhd), ResidentBytes()};
}

// Two toolkits, which now and then end and begin anew, seldom both at once: the modules are then
// unloaded.
class Toolkits {
 public:
  explicit Toolkits(unsigned seed) : random_(seed) {}

  COrvoInstance* pick() {
    const auto number = static_cast<unsigned>(random_() % 4096);
    if (number < 4) one_.reset(), other_.reset();
    std::unique_ptr<orvo::OwnedInstance>& chosen = number % 2 == 0 ? one_ : other_;
    if (chosen == nullptr || number < 32) chosen = std::make_unique<orvo::OwnedInstance>();
    return chosen->get();
  }

 private:
  std::mt19937 random_;
  std::unique_ptr<orvo::OwnedInstance> one_, other_;
};

struct Soak {
  long operations = 0, succeeded = 0;

  void run(RandomWork& work, Toolkits& toolkits, long count) {
    for (; count > 0; --count, ++operations) {
      if (work.step(*toolkits.pick()) == ORVO_OK) ++succeeded;
      if (PlatformHeldLocks() == 0) continue;
      std::printf("operation %ld, %s, leaves a lock\n", operations, work.last().name);
      std::exit(1);
    }
    work.rest();
  }
};

}  // namespace

int main(int count, char** words) {
  const long operations = count > 1 ? std::atol(words[1]) : 100'000;
  const auto seed = count > 2 ? static_cast<unsigned>(std::atol(words[2])) : std::random_device{}();
  std::printf("soak: seed %u\n", seed);
  std::fflush(stdout);

  const State begin = Measure();
  State warm{}, end{};
  long strays = 0;
  Soak soak;
  {
    RandomWork work(seed, fs::temp_directory_path() / ("orvo-soak-" + std::to_string(getpid())),
                    stress::Company::kAlone);
    Toolkits toolkits(seed);
    const long warmUp = std::min(operations / 2, 5000L);
    soak.run(work, toolkits, warmUp);
    warm = Measure();
    soak.run(work, toolkits, operations - warmUp);
    end = Measure();
    strays = work.strays();
  }
  const State last = Measure();
  std::printf(
      "%ld operations, %ld with a result; left: %ld blocks, %ld locks, %ld descriptors, %ld files; "
      "since the warm-up the heap grew by %ld KiB and resident memory by %ld KiB\n",
      soak.operations, soak.succeeded, last.blocks - begin.blocks, last.locks - begin.locks,
      end.descriptors - warm.descriptors, strays, (end.heap - warm.heap) / 1024,
      (end.resident - warm.resident) / 1024);
  const bool kept = last.blocks == begin.blocks && last.locks == begin.locks &&
                    end.descriptors == warm.descriptors && strays == 0 &&
                    (!MemoryTells() || (end.heap - warm.heap < kHeapBytes &&
                                        end.resident - warm.resident < kResidentBytes));
  return kept ? 0 : 1;
}
