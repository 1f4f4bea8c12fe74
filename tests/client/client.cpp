#include "client/client.h"

#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <iterator>

namespace {

namespace fs = std::filesystem;

std::string BytesOf(const fs::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

// A word that the shell takes literally; the tests' words hold no apostrophe.
std::string Quoted(const std::string& word) {
  std::string quoted = " '";
  quoted += word;
  quoted += '\'';
  return quoted;
}

}  // namespace

ClientTest::ClientTest() {
  std::string pattern = (fs::temp_directory_path() / "orvo-client-XXXXXX").string();
  folder_ = mkdtemp(pattern.data());
}

ClientTest::~ClientTest() {
  fs::remove_all(folder_);
}

Outcome ClientTest::runProgram(const std::string& program,
                               const std::vector<std::string>& words) const {
  const std::string output = folder_.string() + ".out";
  const std::string errors = folder_.string() + ".err";
  std::string line = "cd " + Quoted(folder_.string()) + " &&" + Quoted(program);
  for (const std::string& word : words) line += Quoted(word);
  line += " < /dev/null > " + Quoted(output) + " 2> " + Quoted(errors);
  const int ended = std::system(line.c_str());
  Outcome outcome{WIFEXITED(ended) ? WEXITSTATUS(ended) : -1, BytesOf(output), BytesOf(errors)};
  fs::remove(output);
  fs::remove(errors);
  return outcome;
}

std::vector<std::string> ClientTest::names(const std::string& folder) const {
  std::vector<std::string> found;
  for (const fs::directory_entry& entry : fs::directory_iterator(folder_ / folder)) {
    found.push_back(entry.path().filename().string());
  }
  std::sort(found.begin(), found.end());
  return found;
}

std::string ClientTest::bytes(const std::string& name) const {
  return BytesOf(folder_ / name);
}

void ClientTest::write(const std::string& name, const std::string& bytes) const {
  std::ofstream(folder_ / name, std::ios::binary) << bytes;
}
