#include "tone_table.h"

#include <cmath>
#include <fstream>

namespace client {
namespace {

constexpr std::uint32_t kBrightest = 255;

// 256 numbers with blanks, line ends or commas between them.
std::string FromFile(const std::string& path, ToneTable& table) {
  std::ifstream file(path);
  if (!file) return path + " cannot be read";
  std::size_t count = 0;
  for (long tone = 0; file >> tone; ++count) {
    if (tone < 0 || tone > kBrightest) {
      return path + ": " + std::to_string(tone) + " lies outside 0 to 255";
    }
    if (count < table.size()) table[count] = static_cast<std::uint32_t>(tone);
    while (file.peek() == ',' || file.peek() == ' ') file.get();
  }
  if (!file.eof() || count != table.size()) return path + " does not hold 256 numbers";
  return {};
}

// Tones in equal groups, the groups' new tones evenly from black to white.
void Posterize(int tones, ToneTable& table) {
  const auto count = static_cast<std::uint32_t>(tones);
  for (std::uint32_t old = 0; old < table.size(); ++old) {
    const std::uint32_t group = old * count / static_cast<std::uint32_t>(table.size());
    table[old] = (group * kBrightest + (count - 1) / 2) / (count - 1);
  }
}

// Straight lines between the points, level before the first and after the last.
std::string FromCurve(const std::vector<double>& points, ToneTable& table) {
  if (points.size() % 2 != 0) return "--curve needs pairs of numbers";
  for (std::size_t i = 2; i < points.size(); i += 2) {
    if (points[i] <= points[i - 2]) return "--curve needs old tones that rise";
  }
  std::size_t next = 0;  // the first point that is not left of the tone
  for (std::size_t old = 0; old < table.size(); ++old) {
    const auto tone = static_cast<double>(old);
    while (next < points.size() && points[next] < tone) next += 2;
    double value = 0;
    if (next == 0) {
      value = points[1];
    } else if (next == points.size()) {
      value = points[next - 1];
    } else {
      const double share = (tone - points[next - 2]) / (points[next] - points[next - 2]);
      value = points[next - 1] + share * (points[next + 1] - points[next - 1]);
    }
    table[old] = static_cast<std::uint32_t>(std::lround(value));
  }
  return {};
}

}  // namespace

std::string ReadToneTable(const Parameters& parameters, ToneTable& table) {
  const bool file = parameters.has("table");
  const bool tones = parameters.has("posterize");
  const bool curve = parameters.has("curve");
  if (int{file} + int{tones} + int{curve} != 1) {
    return "exactly one of --table, --posterize and --curve is needed";
  }
  if (file) return FromFile(parameters.text("table"), table);
  if (curve) return FromCurve(parameters.numbers("curve"), table);
  Posterize(parameters.whole("posterize"), table);
  return {};
}

}  // namespace client
