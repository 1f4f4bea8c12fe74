// The toolkit in several threads: one for each thread at once, and one that goes from thread to
// thread. Both come to what a single thread comes to, operation by operation. Made to be run under
// the thread sanitizer.
//
//   threads [OPERATIONS] [SEED]
#include <unistd.h>

#include <array>
#include <condition_variable>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

#include "platform/fault_injection.h"
#include "random_work.h"

namespace {

namespace fs = std::filesystem;
using stress::Company;
using stress::RandomWork;

constexpr unsigned kThreads = 4;

fs::path FolderOf(unsigned thread) {
  return fs::temp_directory_path() /
         ("orvo-threads-" + std::to_string(getpid()) + "-" + std::to_string(thread));
}

// What work comes to that lasts from its toolkit's creation to its end. Toolkits come and go while
// others are at work.
std::uint64_t SumOf(unsigned seed, long operations, Company company) {
  RandomWork work(seed, FolderOf(seed), company);
  std::unique_ptr<orvo::OwnedInstance> toolkit;
  for (long i = 0; i < operations; ++i) {
    if (i % 50 == 0) toolkit = std::make_unique<orvo::OwnedInstance>();
    work.step(*toolkit->get());
  }
  return work.sum();
}

bool OnePerThread(unsigned seed, long operations) {
  std::array<std::uint64_t, kThreads> alone{}, beside{};
  for (unsigned i = 0; i < kThreads; ++i) {
    alone[i] = SumOf(seed + i, operations, Company::kAmongOthers);
  }
  std::vector<std::thread> threads;
  for (unsigned i = 0; i < kThreads; ++i) {
    threads.emplace_back(
        [&, i] { beside[i] = SumOf(seed + i, operations, Company::kAmongOthers); });
  }
  for (std::thread& thread : threads) thread.join();
  return alone == beside;
}

// One toolkit and one picture, which the threads hand to each other after every operation.
std::uint64_t SumHandedOn(unsigned seed, long operations, unsigned count) {
  RandomWork work(seed, FolderOf(seed), Company::kAlone);
  const orvo::OwnedInstance toolkit;
  std::mutex mutex;
  std::condition_variable turn;
  long done = 0;
  const auto takeTurns = [&](unsigned mine) {
    for (;;) {
      std::unique_lock lock(mutex);
      turn.wait(lock, [&] { return done == operations || done % count == mine; });
      if (done == operations) return;
      work.step(*toolkit.get());
      ++done;
      turn.notify_all();
    }
  };
  std::vector<std::thread> threads;
  for (unsigned i = 0; i < count; ++i) threads.emplace_back(takeTurns, i);
  for (std::thread& thread : threads) thread.join();
  return work.sum();
}

bool HandedOn(unsigned seed, long operations) {
  SumHandedOn(seed, operations, 1);  // from then on a callback is installed
  return SumHandedOn(seed, operations, 1) == SumHandedOn(seed, operations, kThreads);
}

}  // namespace

int main(int count, char** words) {
  const long operations = count > 1 ? std::atol(words[1]) : 2000;
  const auto seed = count > 2 ? static_cast<unsigned>(std::atol(words[2])) : std::random_device{}();
  std::printf("threads: seed %u\n", seed);
  std::fflush(stdout);
  const bool besides = OnePerThread(seed, operations);
  const bool handed = HandedOn(seed, operations);
  std::printf(
      "%u toolkits at once, %ld operations each: %s; one handed from thread to thread: %s\n",
      kThreads, operations, besides ? "as alone" : "other results",
      handed ? "as in one" : "other results");
  std::printf("left: %zu blocks, %zu locks\n", PlatformLiveBlocks(), PlatformHeldLocks());
  return besides && handed && PlatformLiveBlocks() == 0 && PlatformHeldLocks() == 0 ? 0 : 1;
}
