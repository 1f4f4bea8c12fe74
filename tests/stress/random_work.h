// Operations of the table at random, each on what the one before it left, from a seed.
#ifndef TESTS_STRESS_RANDOM_WORK_H
#define TESTS_STRESS_RANDOM_WORK_H

#include <cstdint>
#include <filesystem>
#include <random>
#include <string>

#include <orvo/raii.h>

#include "every_operation.h"

namespace stress {

// What the process shares, the callback and the dithering mode, is left alone by work that runs
// beside other work.
enum class Company { kAlone, kAmongOthers };

class RandomWork {
 public:
  // Files are read and written in a folder of its own, which is made here.
  RandomWork(unsigned seed, std::filesystem::path folder, Company company);
  ~RandomWork();
  RandomWork(const RandomWork&) = delete;
  RandomWork& operator=(const RandomWork&) = delete;

  // One operation; gives its code.
  int step(COrvoInstance& toolkit);
  // All codes so far, and the bytes of the picture after each operation, in one number.
  [[nodiscard]] std::uint64_t sum() const { return sum_; }
  [[nodiscard]] const Operation& last() const { return *operation_; }
  // Files in the folder that nobody asked for.
  [[nodiscard]] long strays() const;
  // Lets go of the picture.
  void rest() { image_.reset(); }

 private:
  int pick(int low, int high) { return std::uniform_int_distribution(low, high)(random_); }
  bool oneIn(int times) { return pick(1, times) == 1; }
  int pickNumber(const Number& number);
  std::string pickFile();
  StatusCallback pickCallback();
  void prepareImage();
  void takeOver(DibHandle result);
  void add(std::uint64_t number) { sum_ = (sum_ ^ number) * 0x100000001B3U; }
  void addImage();

  std::mt19937 random_;
  std::filesystem::path folder_;
  Company company_;
  orvo::OwnedDib image_;
  const Operation* operation_ = nullptr;
  std::uint64_t sum_ = 0xCBF29CE484222325U;
};

}  // namespace stress

#endif  // TESTS_STRESS_RANDOM_WORK_H
