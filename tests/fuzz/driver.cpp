// Runs a fuzzer's executions where the compiler brings no fuzzer of its own: all inputs as they
// are, then simple changes of them, the same ones every time.
//
//   block_fuzz EXECUTIONS FOLDERS...
//
// The input at hand always lies in the file NAME-input of the working directory, for finds.
#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <random>
#include <string>
#include <vector>

#include "pictures/file_handle.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

namespace fs = std::filesystem;

using Bytes = std::vector<std::uint8_t>;

constexpr std::size_t kMostBytes = 1U << 16U;
constexpr std::size_t kNoiseBytes = 512;

struct Input {
  std::string kind;  // the name of its folder
  Bytes bytes{};
};

std::vector<Input> InputsIn(int count, char** folders) {
  std::vector<fs::path> paths;
  for (int i = 0; i < count; ++i) {
    if (!fs::is_directory(folders[i])) continue;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(folders[i])) {
      if (entry.is_regular_file()) paths.push_back(entry.path());
    }
  }
  std::ranges::sort(paths);
  std::vector<Input> inputs;
  for (const fs::path& path : paths) {
    inputs.push_back({path.parent_path().filename(), modules::ReadWhole(path.c_str())});
  }
  return inputs;
}

class Mutator {
 public:
  // Of a seed that others can lend pieces to.
  Bytes changed(Bytes bytes, const Bytes& other) {
    for (unsigned changes = 1 + number(4); changes > 0; --changes) change(bytes, other);
    bytes.resize(std::min(bytes.size(), kMostBytes));
    return bytes;
  }
  unsigned number(std::size_t below) { return static_cast<unsigned>(random_() % below); }

 private:
  void change(Bytes& bytes, const Bytes& other) {
    if (bytes.empty()) bytes.push_back(0);
    // Files tell most in their first bytes.
    const std::size_t reach =
        number(2) == 0 ? std::min<std::size_t>(bytes.size(), 64) : bytes.size();
    const auto at = bytes.begin() + number(reach);
    const auto room = static_cast<std::size_t>(bytes.end() - at);
    switch (number(7)) {
      case 0:
        *at = static_cast<std::uint8_t>(*at ^ 1U << number(8));
        return;
      case 1:
        *at = static_cast<std::uint8_t>(random_());
        return;
      case 2:
        std::fill_n(at, std::min<std::size_t>(room, 1U << number(3)), number(2) == 0 ? 0 : 0xFF);
        return;
      case 3:
        bytes.erase(at, at + number(std::min<std::size_t>(room, 16) + 1));
        return;
      case 4:
        bytes.insert(at, 1 + number(16), static_cast<std::uint8_t>(random_()));
        return;
      case 5:
        bytes.erase(at, bytes.end());
        return;
      default:
        if (other.empty()) return;
        const std::size_t from = number(other.size());
        std::copy_n(other.begin() + static_cast<std::ptrdiff_t>(from),
                    std::min({room, other.size() - from, std::size_t{1} + number(64)}), at);
    }
  }

  std::mt19937 random_{1};
};

}  // namespace

int main(int count, char** arguments) {
  if (count < 2) return EXIT_FAILURE;
  const int executions = std::atoi(arguments[1]);
  const std::string name = fs::path(arguments[0]).stem();
  std::vector<Input> inputs = InputsIn(count - 2, arguments + 2);
  Mutator mutator;
  Bytes noise(kNoiseBytes);
  for (std::uint8_t& byte : noise) byte = static_cast<std::uint8_t>(mutator.number(256));
  inputs.push_back({"none", std::move(noise)});
  const auto run = [&](const std::string& kind, const Bytes& bytes) {
    setenv("FUZZ_KIND", kind.c_str(), 1);
    modules::WriteFile((name + "-input").c_str(), [&](std::FILE* file) {
      (void)std::fwrite(bytes.data(), 1, bytes.size(), file);
    });
    LLVMFuzzerTestOneInput(bytes.data(), bytes.size());
  };
  for (const Input& input : inputs) run(input.kind, input.bytes);
  for (int i = 0; i < executions; ++i) {
    const Input& input = inputs[static_cast<std::size_t>(i) % inputs.size()];
    run(input.kind, mutator.changed(input.bytes, inputs[mutator.number(inputs.size())].bytes));
  }
  std::cout << name << ": " << inputs.size() << " inputs, " << executions << " changes of them\n";
  return EXIT_SUCCESS;
}
