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
#include "stress/every_operation.h"
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

orvo::OwnedDib PictureOf(int depth, int width, int height) {
  return depth <= 8 ? pictures::NoiseInColor(width, height, depth, 1)
                    : pictures::Noise(width, height, depth, 1);
}

// Every operation on the depths that are worked on as they are, and on one of the others: as wide
// as several vectors, and where windows are looked at, wider than those.
void WriteBlocks(const fs::path& folder) {
  for (std::uint8_t i = 0; i < 60; ++i) {
    const std::string_view name = stress::EveryOperation()[i].name;
    const int side = name.starts_with("Exposure") ? 136 : 60;
    const fuzz::Recipe recipe{.operation = i, .kind = i, .numbers = {21, 31, 11, 41}};
    for (const int depth : {8, 24, kDepths[i % std::size(kDepths)]}) {
      Content input(sizeof recipe);
      std::memcpy(input.data(), &recipe, sizeof recipe);
      const Content block = pictures::BytesOf(PictureOf(depth, side, side).get());
      input.insert(input.end(), block.begin(), block.end());
      Write(folder / (std::to_string(i) + "-" + std::to_string(depth)), input);
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
      const orvo::OwnedDib picture = PictureOf(depth, 24, 18);
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
