// The built library with modules taken away, each combination in a process and a folder of its own.
#include <dlfcn.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <string>

#include <orvo/instance.h>

#include "support/pictures.h"

namespace {

namespace fs = std::filesystem;

struct Row {
  const char* name;
  bool kernel, image, file, pdf;
  int rotate, invert, load;  // codes expected of the kernel's, the adjustments' and the files' work
};

constexpr Row kRows[] = {
    {"all there", true, true, true, true, ORVO_OK, ORVO_OK, ORVO_ERR_FILE_NOT_FOUND},
    {"no files", true, true, false, true, ORVO_OK, ORVO_OK, ORVO_ERR_NO_VENDOR},
    {"no adjustments: files are not tried", true, false, true, true, ORVO_OK, ORVO_ERR_NO_VENDOR,
     ORVO_ERR_NO_VENDOR},
    {"kernel alone", true, false, false, false, ORVO_OK, ORVO_ERR_NO_VENDOR, ORVO_ERR_NO_VENDOR},
    {"no kernel: the others are not tried", false, true, true, true, ORVO_ERR_NO_VENDOR,
     ORVO_ERR_NO_VENDOR, ORVO_ERR_NO_VENDOR},
    {"nothing", false, false, false, false, ORVO_ERR_NO_VENDOR, ORVO_ERR_NO_VENDOR,
     ORVO_ERR_NO_VENDOR},
};

// One black pixel.
constexpr char kTinyGif[] = {'G', 'I', 'F', '8', '9',    'a',    1,      0,   1, 0, '\x80', 0,
                             0,   0,   0,   0,   '\xFF', '\xFF', '\xFF', ',', 0, 0, 0,      0,
                             1,   0,   1,   0,   0,      2,      2,      'D', 1, 0, ';'};

void CopyLibraries(const Row& row, const fs::path& folder) {
  const fs::path built = BUILT_LIBRARIES;
  for (const char* const name : {"liborvo.so.1", "liborvo_platform.so.1"}) {
    fs::copy_file(built / name, folder / name);
  }
  if (row.kernel) fs::copy_file(built / "ltkrn13n.dll", folder / "ltkrn13n.dll");
  if (row.image) fs::copy_file(built / "ltimg13n.dll", folder / "ltimg13n.dll");
  if (row.file) fs::copy_file(built / "ltfil13n.dll", folder / "ltfil13n.dll");
  if (row.pdf) fs::copy_file(built / "PdfLib.dll", folder / "PdfLib.dll");
}

// Runs in a process of its own; 0 when all codes are as expected, else which one was not. The
// library is loaded by a relative path and used from another directory.
int Try(const Row& row, const fs::path& folder) {
  fs::current_path(folder);
  void* const library = dlopen("./liborvo.so.1", RTLD_NOW);
  fs::current_path("/");
  if (library == nullptr) return 1;
  const auto create =
      reinterpret_cast<decltype(&CreateORVOInstance)>(dlsym(library, "CreateORVOInstance"));
  const auto destroy =
      reinterpret_cast<decltype(&DestroyORVOInstance)>(dlsym(library, "DestroyORVOInstance"));
  COrvoInstance* const toolkit = create();
  if (toolkit == nullptr) return 2;
  orvo::OwnedDib image = pictures::Noise(6, 4, 24, 1);
  DibHandle loaded = nullptr;
  if (toolkit->RotateInPlace(image.address(), 90, nullptr) != row.rotate) return 3;
  if (toolkit->InvertInPlace(image.address(), nullptr) != row.invert) return 4;
  if (toolkit->LoadFile("/no/such/file.bmp", &loaded) != row.load) return 5;
  if (toolkit->SharpnessAdjustInPlace(image.get(), 5) != ORVO_OK) return 6;
  // A PDF document needs its own module alone.
  const std::string picture = folder / "in.gif";
  std::ofstream(picture, std::ios::binary) << std::string(kTinyGif, sizeof kTinyGif);
  const int converted =
      toolkit->ConvertFile(picture.c_str(), (folder / "out.pdf").c_str(), 0, nullptr);
  if (converted != (row.pdf ? ORVO_OK : ORVO_ERR_FAILURE)) return 7;
  if (fs::exists(folder / "out.pdf") != row.pdf) return 8;
  destroy(toolkit);
  return 0;
}

TEST(AbsentModules, TheRestGoesOnWorking) {
  for (const Row& row : kRows) {
    const fs::path folder =
        fs::temp_directory_path() / ("orvo.modules_" + std::to_string(getpid()));
    fs::create_directories(folder);
    CopyLibraries(row, folder);
    const pid_t child = fork();
    if (child == 0) _exit(Try(row, folder));
    int status = 0;
    waitpid(child, &status, 0);
    fs::remove_all(folder);
    EXPECT_TRUE(WIFEXITED(status)) << row.name;
    EXPECT_EQ(WEXITSTATUS(status), 0) << row.name;
  }
}

}  // namespace
