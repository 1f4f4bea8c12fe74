#include "client/client.h"

#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <iterator>

#include "sample_pictures/canvas.h"
#include "sample_pictures/scenes.h"
#include "support/pictures.h"

namespace fs = std::filesystem;

ClientTest::ClientTest() {
  std::string pattern = (fs::temp_directory_path() / "orvo-client-XXXXXX").string();
  folder_ = mkdtemp(pattern.data());
  fs::current_path(folder_);
}

ClientTest::~ClientTest() {
  fs::current_path("/");
  fs::remove_all(folder_);
}

Outcome ClientTest::run(const std::string& words) {
  const fs::path output = fs::current_path().string() + ".out";
  const fs::path errors = fs::current_path().string() + ".err";
  const std::string line =
      CLIENT_PROGRAM " " + words + " < /dev/null > " + output.string() + " 2> " + errors.string();
  const int ended = std::system(line.c_str());  // NOLINT(cert-env33-c): our own program
  Outcome outcome{WIFEXITED(ended) ? WEXITSTATUS(ended) : -1, bytes(output), bytes(errors)};
  fs::remove(output);
  fs::remove(errors);
  return outcome;
}

json ClientTest::report(const std::string& words) {
  const Outcome outcome = run(words + " --json");
  EXPECT_EQ(outcome.status, 0) << words << ": " << outcome.errors;
  return nlohmann::json::parse(outcome.output).at("files").at(0);
}

Names ClientTest::names(const std::string& folder) {
  Names found;
  for (const fs::directory_entry& entry : fs::directory_iterator(folder)) {
    found.push_back(entry.path().filename().string());
  }
  std::sort(found.begin(), found.end());
  return found;
}

std::string ClientTest::bytes(const std::string& name) {
  std::ifstream file(name, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

void ClientTest::write(const std::string& name, const std::string& bytes) {
  std::ofstream(name, std::ios::binary) << bytes;
}

void ClientTest::save(const std::string& name, const orvo::OwnedDib& picture) const {
  ASSERT_EQ(toolkit_->SaveFile(picture.get(), name.c_str(), 0, 0), ORVO_OK) << name;
}

orvo::OwnedDib ClientTest::load(const std::string& name) const {
  orvo::OwnedDib picture;
  EXPECT_EQ(toolkit_->LoadFile(name.c_str(), picture.receive()), ORVO_OK) << name;
  return picture;
}

orvo::OwnedDib ClientTest::loadTrueColor(const std::string& name) const {
  orvo::OwnedDib picture = load(name);
  EXPECT_EQ(toolkit_->ConvertToColorResInPlace(picture.address(), 24), ORVO_OK) << name;
  return picture;
}

orvo::OwnedDib Page() {
  orvo::OwnedDib page = pictures::Blank(240, kPageHeight, 24);
  const pictures::Locked image(page.get());
  std::memset(image.row(0), 255, std::size_t{720} * kPageHeight);
  for (int y = 30; y < 100; ++y) std::memset(image.row(y) + 180, 0, 420);
  for (int y = 180; y < 280; ++y) std::memset(image.row(y) + 120, 0, 240);
  return page;
}

orvo::OwnedDib Portrait() {
  samples::Canvas canvas(kPortraitWidth, kPortraitHeight);
  constexpr double kUnit = kPortraitHeight;
  canvas.draw([](double x, double y) { return samples::Portrait(x / kUnit, y / kUnit); }, 0);
  return canvas.toDib(300, false);
}

Color ColorAt(const orvo::OwnedDib& picture, int x, int y) {
  const pictures::Locked image(picture.get());
  const std::uint8_t* const pixel =
      image.row(image.layout().height - 1 - y) + std::ptrdiff_t{3} * x;
  return {pixel[0], pixel[1], pixel[2]};
}

void ExpectFramed(const orvo::OwnedDib& before, const orvo::OwnedDib& marked,
                  const std::vector<Box>& boxes, int outside, const Color& color) {
  const orvo::DibLayout layout = pictures::Locked(before.get()).layout();
  for (int y = 0; y < layout.height; ++y) {
    for (int x = 0; x < layout.width; ++x) {
      const bool framed = std::any_of(boxes.begin(), boxes.end(), [&](const Box& box) {
        const auto& [left, top, right, bottom] = box;
        const int inside = std::min({x - left, y - top, right - 1 - x, bottom - 1 - y}) + outside;
        return inside >= 0 && inside < 3;
      });
      ASSERT_EQ(ColorAt(marked, x, y), framed ? color : ColorAt(before, x, y)) << x << ", " << y;
    }
  }
}
