// Files of every kind that can be written. A target is absent, as it was, or whole, and nothing
// lies beside it.
#include "faulty_files.h"

#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <regex>

#include "outcomes.h"
#include "platform/fault_injection.h"
#include "support/pictures.h"

namespace stress {
namespace {

namespace fs = std::filesystem;

constexpr auto kMemory = {Fault::kAllocation, Fault::kLock, Fault::kNew};
constexpr std::string_view kOperations[] = {"LoadFile", "CreateThumbnailFromFile", "SaveFile",
                                            "ImageFileInfo", "ConvertFile"};
constexpr const char* kKinds[] = {"bmp", "tif", "jpg", "pcx", "psd", "png",
                                  "ras", "tga", "pct", "eps", "pdf"};

// Without the time at which it was made, which some kinds hold.
std::string Contents(const fs::path& path) {
  static const std::regex time("CreationDate.*|/ID .*");
  std::ifstream file(path, std::ios::binary);
  const std::string bytes(std::istreambuf_iterator<char>(file), {});
  return std::regex_replace(bytes, time, "");
}

class Folder {
 public:
  Folder() : path_(fs::temp_directory_path() / ("orvo-faults-" + std::to_string(getpid()))) {
    fs::create_directories(path_ / "out");
  }
  ~Folder() { fs::remove_all(path_); }
  Folder(const Folder&) = delete;
  Folder& operator=(const Folder&) = delete;

  [[nodiscard]] fs::path source(const std::string& name) const { return path_ / name; }
  [[nodiscard]] fs::path target(const std::string& kind) const {
    return path_ / "out" / ("a." + kind);
  }

 private:
  fs::path path_;
};

struct Left {
  int code = 0;
  std::string made;  // the picture or the target's contents
  bool olderStays = false;
  bool operator==(const Left&) const = default;
};

std::string BytesOf(DibHandle image) {
  const auto bytes = pictures::BytesOf(image);
  return {bytes.begin(), bytes.end()};
}

const Operation& Named(const char* name) {
  return *std::ranges::find_if(EveryOperation(), [=](const Operation& operation) {
    return std::strcmp(operation.name, name) == 0;
  });
}

// Loads, describes or shrinks a file, over an older picture in the result handle.
void FailReading(COrvoInstance& toolkit, const Operation& operation, const fs::path& source) {
  const std::string where = std::string(operation.name) + " of " + source.filename().string();
  FailEach(
      kMemory, where,
      [&] {
        const std::size_t blocks = PlatformLiveBlocks();
        orvo::OwnedDib older = pictures::Blank(3, 2, 24);
        DibHandle result = older.get();
        Call call{toolkit, nullptr, &result, operation.usual(), source.string(), ""};
        Left left;
        left.code = UnderFault(operation, call);
        left.olderStays = result == older.get() && GlobalSize(result) != 0;
        if (result != nullptr) left.made = BytesOf(result);
        if (!left.olderStays) GlobalFree(result);
        older.reset();
        Check(PlatformLiveBlocks() == blocks, where, "blocks were lost");
        return left;
      },
      [&](const Left& left, const Left& whole) {
        Check(left.code == ORVO_OK ? left == whole : left.olderStays, where,
              "an older picture is lost");
        Met(operation.name, std::to_string(left.code));
      });
}

// Writes a target that is absent or, when older names a file, was that one before.
void FailWriting(const Call& call, const Operation& operation, const fs::path& older) {
  const fs::path target = call.target;
  const std::string where = std::string(operation.name) + " to " + target.filename().string();
  FailEach(
      kMemory, where,
      [&] {
        const std::size_t blocks = PlatformLiveBlocks();
        fs::remove(target);
        if (!older.empty()) fs::copy_file(older, target);
        Left left;
        left.code = UnderFault(operation, call);
        if (fs::exists(target)) left.made = Contents(target);
        for (const auto& entry : fs::directory_iterator(target.parent_path())) {
          Check(entry.path() == target, where, "something is left beside the target");
        }
        Check(PlatformLiveBlocks() == blocks, where, "blocks were lost");
        return left;
      },
      [&](const Left& left, const Left& whole) {
        const bool isPdf = target.extension() == ".pdf";
        const bool isAsBefore = older.empty() ? left.made.empty() : left.made == Contents(older);
        // Without memory for its name the program is not told as a document's creator.
        const bool isNameless = left.made.find("/Creator ()") != std::string::npos;
        const char state = left.made == whole.made      ? 'w'
                           : isAsBefore                 ? 'o'
                           : isPdf && isNameless        ? 'n'
                           : isPdf && left.made.empty() ? 'a'
                                                        : 'x';
        Met(operation.name, std::to_string(left.code) + state);
      });
  fs::remove(target);
}

// The first file of a rare kind waits for its library; one that could not be loaded whole is loaded
// for the next.
void FailLoading(COrvoInstance& toolkit, DibHandle image, const fs::path& target) {
  for (int n = 1;; ++n) {
    Arm(Fault::kLoading, n);
    const int code = toolkit.SaveFile(image, target.c_str(), 0, 0);
    if (Disarm() == 0) break;
    Check(code == ORVO_ERR_BAD_FORMAT && !fs::exists(target), "SaveFile", "misses no library");
  }
  Check(fs::remove(target), "SaveFile", "does not come back");
}

}  // namespace

bool WorksOnFiles(const Operation& operation) {
  return std::ranges::find(kOperations, operation.name) != std::end(kOperations);
}

void FailFiles(COrvoInstance& toolkit) {
  const Folder folder;
  const fs::path older = folder.source("older");
  std::ofstream(older) << "an older file";
  orvo::OwnedDib image = pictures::Noise(13, 11, 24, 1);
  const fs::path source = folder.source("source.png");
  toolkit.SaveFile(image.get(), source.c_str(), 0, 0);
  FailLoading(toolkit, image.get(), folder.target("pcx"));
  for (const char* kind : kKinds) {
    for (const int depth : {1, 8, 24, 32}) {
      const fs::path before = depth == 1 || depth == 24 ? fs::path() : older;
      if (std::strcmp(kind, "pdf") == 0 && depth < 24) continue;  // which takes long
      orvo::OwnedDib picture = pictures::Noise(13, 11, depth, 1);
      DibHandle handle = picture.get();
      FailWriting({toolkit, &handle, nullptr, {0, 80}, "", folder.target(kind)}, Named("SaveFile"),
                  before);
    }
    if (std::strcmp(kind, "eps") != 0) {
      FailWriting({toolkit, nullptr, nullptr, {80}, source, folder.target(kind)},
                  Named("ConvertFile"), older);
    }
    const fs::path file = folder.source(std::string("read.") + kind);
    toolkit.SaveFile(image.get(), file.c_str(), 0, 80);
    for (const char* name : {"LoadFile", "CreateThumbnailFromFile", "ImageFileInfo"}) {
      FailReading(toolkit, Named(name), file);
    }
  }
  const fs::path pages = folder.source("read.tif");
  DibHandle handle = image.get();
  FailWriting({toolkit, &handle, nullptr, {1}, "", folder.target("tif")}, Named("SaveFile"), pages);
  toolkit.SaveFile(handle, pages.c_str(), 1, 0);
  FailWriting({toolkit, nullptr, nullptr, {80}, pages, folder.target("pdf")}, Named("ConvertFile"),
              older);
}

}  // namespace stress
