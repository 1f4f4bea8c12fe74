// What the client says of formats is what it does; what it writes is small, and what a file holds
// beside its picture does not go unsaid.
#include "client/client.h"
#include "support/pictures.h"

namespace {

namespace fs = std::filesystem;
using namespace std::string_literals;

class FormatsTest : public ClientTest {};

TEST_F(FormatsTest, what_is_said_to_be_written_is_and_the_rest_is_refused) {
  save("a.bmp", pictures::Noise(24, 20, 24, 1));
  const json formats = json::parse(run("formats --json").output).at("formats");
  EXPECT_GT(formats.size(), 10U);
  for (const json& format : formats) {
    for (const std::string extension : format.at("extensions")) {
      const std::string target = "x." + extension;
      const Outcome written = run("invert a.bmp -o " + target);
      EXPECT_EQ(written.status, format.at("write") ? 0 : 1) << target << written.errors;
      EXPECT_EQ(fs::exists(target), format.at("write")) << target;
      if (!fs::exists(target)) continue;
      const Outcome read = run("invert " + target + " -o back.bmp");
      EXPECT_EQ(read.status, format.at("read") ? 0 : 1) << target << read.errors;
    }
  }
}

TEST_F(FormatsTest, png_without_a_level_is_about_as_small_as_at_level_six) {
  save("photo.bmp", Portrait());
  for (const char* const words : {"convert photo.bmp", "depth --bits 1 --dither ordered photo.bmp",
                                  "depth --bits 8 photo.bmp", "gray photo.bmp"}) {
    const auto size = [&](const std::string& options) {
      EXPECT_EQ(run(words + " -o x.png"s + options).status, 0) << words;
      return static_cast<double>(fs::file_size("x.png"));
    };
    EXPECT_LT(size(""), 1.15 * size(" --png-level 6")) << words;
    EXPECT_LT(size(" --png-level 9"), size(" --png-level 1")) << words;
  }
}

TEST_F(FormatsTest, two_bits_stay_two_bits) {
  orvo::OwnedDib four = pictures::Noise(40, 20, 4, 1);
  {
    const pictures::Locked image(four.get());
    for (int y = 0; y < 20; ++y) {
      for (int byte = 0; byte < 20; ++byte) image.row(y)[byte] &= 0x33;
    }
    for (int entry = 4; entry < 16; ++entry) image.palette()[entry] = {};
    image.palette()[1].rgbRed ^= 1;
  }
  save("a.png", four);
  constexpr std::size_t kBitsAt = 24;
  EXPECT_EQ(bytes("a.png").at(kBitsAt), 2);
  EXPECT_EQ(pictures::BytesOf(load("a.png").get()), pictures::BytesOf(four.get()));
}

TEST_F(FormatsTest, pictures_behind_the_first_are_counted) {
  save("a.png", pictures::Noise(9, 9, 24, 1));
  save("a.jpg", pictures::Noise(9, 9, 24, 1));
  const auto with = [](const std::string& file, std::size_t at, const std::string& more) {
    return bytes(file).insert(at, more);
  };
  constexpr std::size_t kBehindHeader = 33;
  const std::string moves =
      "\0\0\0\x08"
      "acTL\0\0\0\x03\0\0\0\0\xCE\xED\xBA\xCE"s;
  const std::string frame = "\0\0\0\0fcTL\0\0\0\0"s;
  write("moves.png", with("a.png", kBehindHeader, moves));
  write("begins.png", with("a.png", kBehindHeader, moves + frame));
  write("phone.jpg", with("a.jpg", 2,
                          "\xFF\xE2\0\x20MPF\0MM\0*\0\0\0\x08\0\x01\xB0\x01\0\x04\0\0\0\x01"
                          "\0\0\0\x03\0\0\0\0"s));
  const struct {
    const char* name;
    const char* told;
  } kRows[] = {{"moves.png", "3 further frames"},
               {"begins.png", "2 further frames"},
               {"phone.jpg", "2 further pictures"}};
  for (const auto& [name, told] : kRows) {
    const std::string before = bytes(name);
    const std::string words = std::string("gray ") + name;
    EXPECT_NE(run(words + " -o x.png").errors.find(told + " are left out"s), std::string::npos)
        << name;
    const Outcome refused = run(words + " --in-place");
    EXPECT_EQ(refused.status, 1) << name;
    EXPECT_NE(refused.errors.find(told + " would be lost; --allow-loss"s), std::string::npos);
    EXPECT_TRUE(bytes(name) == before) << name;
    EXPECT_EQ(run(words + " --in-place --allow-loss").status, 0) << name;
  }
  // Of 16 bits, whose layers stand in a block of their own, here behind one of three bytes.
  write("layers.psd",
        "8BPS\0\x01\0\0\0\0\0\0\0\x03\0\0\0\x01\0\0\0\x01\0\x10\0\x03\0\0\0\0\0\0\0\0"
        "\0\0\0\x28\0\0\0\0\0\0\0\0"
        "8BIMPatt\0\0\0\x03"
        "abc\0"
        "8BIMLr16\0\0\0\x04\0\x02\0\0"
        "\0\0"
        "ABCDEF"s);
  EXPECT_NE(run("gray layers.psd -o x.png").errors.find("its 2 layers are merged into one"),
            std::string::npos);
}

}  // namespace
