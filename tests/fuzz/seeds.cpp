// Writes inputs to start from into a folder: blocks, and small pictures of every depth in every
// kind that the toolkit writes.
//
//   fuzz_seeds FOLDER
#include <map>

#include <orvo/raii.h>

#include "common/dib_image.h"
#include "fuzz.h"
#include "made_profile.h"
#include "pictures/codecs.h"
#include "recipe.h"
#include "sample_pictures/scans.h"
#include "sample_pictures/scenes.h"
#include "support/pictures.h"

namespace {

namespace fs = std::filesystem;

using Content = std::vector<std::uint8_t>;

constexpr int kDepths[] = {1, 4, 8, 16, 24, 32};

void Write(const fs::path& path, fuzz::Bytes bytes) {
  fs::create_directories(path.parent_path());
  modules::WriteFile(path.c_str(), [&](std::FILE* file) {
    (void)std::fwrite(bytes.data(), 1, bytes.size(), file);
  });
}

orvo::OwnedDib NoiseOf(int depth, int width, int height) {
  return depth <= 8 ? pictures::NoiseInColor(width, height, depth, 1)
                    : pictures::Noise(width, height, depth, 1);
}

orvo::OwnedDib Face() {
  constexpr int kWidth = 128, kHeight = 160;
  samples::Canvas canvas(kWidth, kHeight);
  canvas.draw([](double x, double y) { return samples::Portrait(x / kHeight, y / kHeight); }, 2);
  return canvas.toDib(72, false);
}

// Every operation on noise of the depths that are worked on as they are and of one of the others,
// as wide as several vectors, and on pictures in which there is something to find.
void WriteBlocks(const fs::path& folder) {
  constexpr int kSide = 136;  // more than the widest window
  const samples::Canvas bed = samples::ScannerBed(kSide, kSide);
  for (std::uint8_t i = 0; i < 60; ++i) {
    const orvo::OwnedDib blocks[] = {NoiseOf(8, 60, 60),
                                     NoiseOf(24, 60, 60),
                                     bed.toDib(72, true),
                                     bed.toDib(72, false),
                                     Face(),
                                     NoiseOf(kDepths[i % std::size(kDepths)], 60, 60)};
    const fuzz::Recipe recipe{.operation = i, .kind = i, .numbers = {53, 91, 11, 41}};
    for (const orvo::OwnedDib& block : blocks) {
      Content input(sizeof recipe);
      std::memcpy(input.data(), &recipe, sizeof recipe);
      const Content bytes = pictures::BytesOf(block.get());
      input.insert(input.end(), bytes.begin(), bytes.end());
      Write(folder / (std::to_string(i) + "-" + std::to_string(&block - blocks)), input);
    }
  }
}

// Kinds that are another one under a further name are left out.
void WriteFiles(const fs::path& folder) {
  std::map<Content, std::string> kinds;
  for (const std::string& name : fuzz::Kinds()) {
    std::string kind = name;
    std::ranges::transform(kind, kind.begin(), [](int letter) { return std::tolower(letter); });
    for (const int depth : kDepths) {
      const fuzz::File file("a." + kind);
      const orvo::OwnedDib picture = NoiseOf(depth, 24, 18);
      if (fuzz::Toolkit().SaveFile(picture.get(), file.name(), 0, 80) != ORVO_OK) continue;
      const Content bytes = modules::ReadWhole(file.name());
      if (kinds.try_emplace(bytes, kind).first->second != kind) continue;
      Write(folder / kind / std::to_string(depth), bytes);
    }
  }
}

// Documents of those files that can be pages.
void WriteDocuments(const fs::path& folder, const fs::path& files) {
  for (const fs::directory_entry& kind : fs::directory_iterator(files)) {
    for (const fs::directory_entry& entry : fs::directory_iterator(kind.path())) {
      const std::string name = kind.path().filename();
      const fuzz::File source("a." + name, modules::ReadWhole(entry.path().c_str()));
      const fuzz::File target("a.pdf");
      if (fuzz::Toolkit().ConvertFile(source.name(), target.name(), 0, nullptr) != ORVO_OK)
        continue;
      Write(folder / (name + entry.path().filename().string()), modules::ReadWhole(target.name()));
    }
  }
}

}  // namespace

int main(int count, char** arguments) {
  if (count != 2) return EXIT_FAILURE;
  const fs::path folder = arguments[1];
  WriteBlocks(folder / "block");
  WriteFiles(folder / "format");
  WriteDocuments(folder / "pdf", folder / "format");
  Write(folder / "profile.icc", client::AdobeRgbProfile());
  return EXIT_SUCCESS;
}
