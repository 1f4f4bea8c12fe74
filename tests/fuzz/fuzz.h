// What the fuzzers share: files in a folder of their own, and what has to hold after everything.
#ifndef TESTS_FUZZ_FUZZ_H
#define TESTS_FUZZ_FUZZ_H

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <iostream>
#include <span>
#include <string>
#include <vector>

#include <orvo/file_limits.h>
#include <orvo/orvo.h>

#include "pictures/file_handle.h"
#include "platform/fault_injection.h"

namespace fuzz {

using Bytes = std::span<const std::uint8_t>;

// A process that ends so is what fuzzers call a find.
inline void Require(bool holds, const std::string& what) {
  if (holds) return;
  std::cerr << "broken: " << what << '\n';
  std::abort();
}

// A folder for this process, which takes its temporary files too. It goes with the process, unless
// that comes to a bad end.
inline const std::string& Folder() {
  static const struct Made {
    Made() {
      path = std::filesystem::temp_directory_path() / "fuzz.XXXXXX";
      Require(mkdtemp(path.data()) != nullptr, "no folder");
      setenv("TMPDIR", path.c_str(), 1);
      path += '/';
    }
    ~Made() {
      std::error_code ignored;
      std::filesystem::remove_all(path, ignored);
    }
    std::string path;
  } folder;
  return folder.path;
}

// A file of that folder, there or not, for as long as this lives.
class File {
 public:
  explicit File(const std::string& name) : path_(Folder() + name) {}
  File(const std::string& ending, Bytes bytes) : File(ending) {
    modules::WriteFile(
        name(), [&](std::FILE* file) { (void)std::fwrite(bytes.data(), 1, bytes.size(), file); });
  }
  File(const File&) = delete;
  File& operator=(const File&) = delete;
  ~File() { std::remove(path_.c_str()); }

  [[nodiscard]] const std::string& path() const { return path_; }
  [[nodiscard]] const char* name() const { return path_.c_str(); }

 private:
  std::string path_;
};

// One instance for all. What a file states is believed as far as executions stay short with it.
inline COrvoInstance& Toolkit() {
  static COrvoInstance* const toolkit = [] {
    OrvoFileLimits limits = *OrvoLimitFiles(nullptr);
    limits.pixels = 1U << 14U;
    limits.memory = 1U << 24U;
    OrvoLimitFiles(&limits);
    return CreateORVOInstance();
  }();
  return *toolkit;
}

// Stands before all else of an execution: whatever comes of that, no lock is held afterwards, every
// block can be accounted for, and no file is left.
class Accounts {
 public:
  Accounts() {
    (void)Folder();
    (void)Toolkit();
    blocks_ = PlatformLiveBlocks();
  }
  Accounts(const Accounts&) = delete;
  Accounts& operator=(const Accounts&) = delete;
  ~Accounts() {
    Require(PlatformHeldLocks() == 0, "a lock is held");
    Require(PlatformLiveBlocks() == blocks_, "a block is left");
    Require(std::filesystem::is_empty(Folder()), "a file is left");
  }

 private:
  std::size_t blocks_ = 0;
};

// Those of the files that can be loaded, as the toolkit lists them: "BMP", "TIF" ...
inline const std::vector<std::string>& Kinds() {
  static const std::vector<std::string> kinds = [] {
    std::uint32_t size = 0;
    Toolkit().GetFileExtensions(nullptr, nullptr, &size);
    std::string list(size, '\0');
    Toolkit().GetFileExtensions(nullptr, list.data(), &size);
    std::vector<std::string> names;
    for (const char* name = list.c_str(); *name != '\0'; name += names.back().size() + 1) {
      names.emplace_back(name);
    }
    return names;
  }();
  return kinds;
}

}  // namespace fuzz

#endif  // TESTS_FUZZ_FUZZ_H
