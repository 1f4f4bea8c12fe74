#include "file_kind.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <filesystem>
#include <fstream>
#include <string_view>

namespace client {
namespace {

using namespace std::string_view_literals;

struct Mark {
  std::string_view begin;
  std::string_view kind;
};
constexpr Mark kMarks[] = {
    {"\xFF\xD8\xFF"sv, "jpeg"},
    {"\x89PNG\r\n\x1A\n"sv, "png"},
    {"II\x2A\0"sv, "tiff"},
    {"MM\0\x2A"sv, "tiff"},
    {"II\x2B\0"sv, "tiff"},
    {"MM\0\x2B"sv, "tiff"},
    {"BM"sv, "bmp"},
    {"8BPS"sv, "psd"},
    {"GIF8"sv, "gif"},
    {"%PDF-"sv, "pdf"},
};

// Names of one kind by which files are known.
constexpr Mark kNames[] = {
    {"jpg", "jpeg"}, {"jpe", "jpeg"}, {"tif", "tiff"}, {"jff", "bmp"}, {"pict", "pct"}};

}  // namespace

std::string KindOfName(const std::string& path) {
  std::string kind = std::filesystem::path(path).extension().string();
  kind.erase(0, 1);
  for (char& letter : kind) {
    letter = static_cast<char>(std::tolower(static_cast<unsigned char>(letter)));
  }
  const auto* const other = std::ranges::find(kNames, kind, &Mark::begin);
  return other == std::end(kNames) ? kind : std::string(other->kind);
}

std::string KindOfFile(const std::string& path) {
  std::array<char, 8> bytes{};
  std::ifstream file(path, std::ios::binary);
  file.read(bytes.data(), bytes.size());
  const std::string_view head(bytes.data(), static_cast<std::size_t>(file.gcount()));
  const auto* const mark =
      std::ranges::find_if(kMarks, [&](const Mark& row) { return head.starts_with(row.begin); });
  return mark == std::end(kMarks) ? KindOfName(path) : std::string(mark->kind);
}

}  // namespace client
