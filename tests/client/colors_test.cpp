// Pictures whose profile is not sRGB's: what they look like stays what it is.
#include <lcms2.h>
#include <tiffio.h>

#include <algorithm>
#include <memory>

#include "carried.h"
#include "client/client.h"
#include "support/pictures.h"

namespace {

using client::Bytes;
using Codes = std::array<std::uint8_t, 4>;  // of one pixel; blue, green and red, or four inks

Bytes Saved(cmsHPROFILE profile) {
  cmsUInt32Number bytes = 0;
  cmsSaveProfileToMem(profile, nullptr, &bytes);
  Bytes saved(bytes);
  cmsSaveProfileToMem(profile, saved.data(), &bytes);
  cmsCloseProfile(profile);
  return saved;
}

// Of colours that sRGB has not; green's number comes first, then red's.
Bytes Wide() {
  constexpr cmsCIExyY kWhite{0.3127, 0.3290, 1};
  constexpr cmsCIExyYTRIPLE kPrimaries{{0.1596, 0.8404, 1}, {0.7347, 0.2653, 1}, {0.0366, 0.01, 1}};
  cmsToneCurve* const curve = cmsBuildGamma(nullptr, 1.8);
  cmsToneCurve* const curves[]{curve, curve, curve};
  const Bytes profile = Saved(cmsCreateRGBProfile(&kWhite, &kPrimaries, curves));
  cmsFreeToneCurve(curve);
  return profile;
}

Bytes DarkGray() {
  cmsToneCurve* const curve = cmsBuildGamma(nullptr, 3);
  const Bytes profile = Saved(cmsCreateGrayProfile(cmsD50_xyY(), curve));
  cmsFreeToneCurve(curve);
  return profile;
}

// Inks of which black alone counts, and never gets quite black.
Bytes Inks() {
  const cmsHPROFILE profile = cmsCreateProfilePlaceholder(nullptr);
  cmsSetProfileVersion(profile, 2.1);
  cmsSetDeviceClass(profile, cmsSigOutputClass);
  cmsSetColorSpace(profile, cmsSigCmykData);
  cmsSetPCS(profile, cmsSigLabData);
  cmsPipeline* const mixture = cmsPipelineAlloc(nullptr, 4, 3);
  cmsStage* const table = cmsStageAllocCLut16bit(nullptr, 2, 4, 3, nullptr);
  cmsStageSampleCLut16bit(
      table,
      [](const cmsUInt16Number inks[], cmsUInt16Number lab[], void*) {
        lab[0] = static_cast<cmsUInt16Number>(inks[3] == 0 ? 0xFF00 : 0x4000);
        lab[1] = lab[2] = 0x8000;
        return 1;
      },
      nullptr, 0);
  cmsPipelineInsertStage(mixture, cmsAT_END, table);
  cmsWriteTag(profile, cmsSigAToB0Tag, mixture);
  cmsPipelineFree(mixture);
  return Saved(profile);
}

// From the numbers of a profile to sRGB, or back, without the client's roads.
class Road {
 public:
  Road(const Bytes& profile, cmsUInt32Number form, bool back = false) {
    const cmsHPROFILE own =
        cmsOpenProfileFromMem(profile.data(), static_cast<cmsUInt32Number>(profile.size()));
    const cmsHPROFILE srgb = cmsCreate_sRGBProfile();
    road_.reset(cmsCreateTransform(back ? srgb : own, form, back ? own : srgb, TYPE_BGR_8,
                                   INTENT_RELATIVE_COLORIMETRIC,
                                   cmsFLAGS_BLACKPOINTCOMPENSATION | cmsFLAGS_NOOPTIMIZE));
    cmsCloseProfile(own);
    cmsCloseProfile(srgb);
  }
  void go(const std::uint8_t* from, std::uint8_t* to, cmsUInt32Number pixels) const {
    cmsDoTransform(road_.get(), from, to, pixels);
  }
  Codes operator()(const Codes& codes) const {
    Codes result{};
    go(codes.data(), result.data(), 1);
    return result;
  }

 private:
  std::unique_ptr<void, decltype(&cmsDeleteTransform)> road_{nullptr, cmsDeleteTransform};
};

class ColorsTest : public ClientTest {
 protected:
  // Saves a picture as PNG with the profile.
  void saveWith(const std::string& name, const orvo::OwnedDib& picture,
                const Bytes& profile) const {
    save(name, picture);
    client::Carried carried;
    carried.profile = profile;
    client::WritePngMetadata(name, carried);
  }
  static Bytes profileOf(const std::string& name) {
    client::Carried found;
    client::ReadPngMetadata(name, found);
    return found.profile;
  }
  void expectColor(const std::string& name, const Codes& color) const {
    const Color found = ColorAt(loadTrueColor(name), 3, 2);
    for (std::size_t i = 0; i < found.size(); ++i) {
      EXPECT_NEAR(found[i], color[i], 1) << name << " " << i;
    }
  }
};

// One colour all over.
orvo::OwnedDib Plain(const Codes& color) {
  orvo::OwnedDib picture = pictures::Blank(8, 8, 24);
  const pictures::Locked image(picture.get());
  for (int y = 0; y < 8; ++y) {
    for (int x = 0; x < 8; ++x) std::copy_n(color.begin(), 3, image.row(y) + 3 * x);
  }
  return picture;
}

// The portrait in other numbers.
orvo::OwnedDib Renumbered(const orvo::OwnedDib& picture, const Bytes& profile) {
  orvo::OwnedDib other = pictures::Blank(kPortraitWidth, kPortraitHeight, 24);
  const pictures::Locked from(picture.get());
  const pictures::Locked to(other.get());
  const Road road(profile, TYPE_BGR_8, true);
  for (int y = 0; y < kPortraitHeight; ++y) road.go(from.row(y), to.row(y), kPortraitWidth);
  return other;
}

TEST_F(ColorsTest, WhatCannotKeepTheProfileIsBroughtToSrgb) {
  const Bytes profile = Wide();
  const Codes wide{90, 120, 160};
  const Codes srgb = Road(profile, TYPE_BGR_8)(wide);
  saveWith("wide.png", Plain(wide), profile);
  const std::string told = "not kept: the color profile: the colors are brought to sRGB\n";
  for (const char* const words :
       {"convert wide.png -o out.bmp", "rotate --angle 90 wide.png -o out.tga",
        "convert --strip=all wide.png -o out.png"}) {
    const Outcome outcome = run(words);
    const std::string name = std::string(words).substr(std::string(words).rfind("out"));
    EXPECT_EQ(outcome.errors, "orvo: warning: wide.png: " + told);
    expectColor(name, srgb);
  }
  EXPECT_TRUE(profileOf("out.png").empty());
  run("thumbnail --size 8x8 wide.png -o thumb.bmp");
  expectColor("thumb.bmp", srgb);

  // Gray as of the same colours in sRGB.
  run("gray wide.png -o gray.bmp && " CLIENT_PROGRAM " gray out.png -o srgb.bmp");
  EXPECT_TRUE(bytes("gray.bmp") == bytes("srgb.bmp"));

  // What can keep it keeps it, and its numbers.
  for (const char* const words : {"convert wide.png -o kept.tif", "convert kept.tif -o kept.png",
                                  "convert --strip wide.png -o kept.png"}) {
    EXPECT_EQ(run(words).errors, "");
  }
  EXPECT_EQ(profileOf("kept.png"), profile);
  expectColor("kept.png", wide);
}

TEST_F(ColorsTest, TonesKeepTheirProfileWhileTheyAreTones) {
  orvo::OwnedDib picture = Plain({100, 100, 100});
  EXPECT_EQ(toolkit_->ConvertToGrayScaleResInPlace(picture.address(), nullptr), ORVO_OK);
  const Bytes profile = DarkGray();  // made once: it holds the time of its making
  saveWith("gray.png", picture, profile);
  run("invert gray.png -o still.png");
  EXPECT_EQ(profileOf("still.png"), profile);
  expectColor("still.png", {155, 155, 155});
  for (const char* const words :
       {"convert gray.png -o out.bmp", "depth --bits 24 gray.png -o out.png"}) {
    run(words);
    expectColor(std::string(words).substr(std::string(words).rfind("out")),
                Road(profile, TYPE_GRAY_8)({100}));
  }
  EXPECT_TRUE(profileOf("out.png").empty());
}

TEST_F(ColorsTest, InksAreMixedAsTheirProfileSays) {
  const Bytes profile = Inks();
  const Codes inks{200, 30, 60, 102};
  for (const bool hasAlpha : {false, true}) {
    TIFF* const tiff = TIFFOpen("inks.tif", "w");
    TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, 8);
    TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, 8);
    TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, 8);
    TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, hasAlpha ? 5 : 4);
    TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_SEPARATED);
    TIFFSetField(tiff, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
    TIFFSetField(tiff, TIFFTAG_ICCPROFILE, static_cast<std::uint32_t>(profile.size()),
                 profile.data());
    constexpr std::uint16_t kOpacity = EXTRASAMPLE_UNASSALPHA;
    if (hasAlpha) TIFFSetField(tiff, TIFFTAG_EXTRASAMPLES, 1, &kOpacity);
    Bytes row;
    for (int x = 0; x < 8; ++x) {
      row.insert(row.end(), inks.begin(), inks.end());
      if (hasAlpha) row.push_back(77);
    }
    for (std::uint32_t y = 0; y < 8; ++y) TIFFWriteScanline(tiff, row.data(), y, 0);
    TIFFClose(tiff);
    const Outcome outcome = run("convert inks.tif -o out.png");
    EXPECT_NE(outcome.errors.find("the colors are brought to sRGB"), std::string::npos);
    expectColor("out.png", Road(profile, TYPE_CMYK_8)(inks));
    const orvo::OwnedDib picture = load("out.png");
    const pictures::Locked shown(picture.get());
    if (hasAlpha) {
      EXPECT_EQ(shown.row(2)[4 * 3 + 3], 77);
    }
  }
}

TEST_F(ColorsTest, InksThatAreStoredAsPaperAreTheSame) {
  const Codes inks{200, 30, 60, 102};
  // Four channels of 8 by 8 pixels in 8 bits, and nothing beside them.
  std::string file{"8BPS\0\1\0\0\0\0\0\0\0\4\0\0\0\x8\0\0\0\x8\0\x8\0\4", 26};
  file.resize(40);
  for (const std::uint8_t ink : inks) file += std::string(64, static_cast<char>(255 - ink));
  write("inks.psd", file);
  client::Carried carried;
  carried.profile = Inks();
  client::WritePhotoshopMetadata("inks.psd", carried);
  run("convert inks.psd -o out.png");
  expectColor("out.png", Road(Inks(), TYPE_CMYK_8)(inks));
}

TEST_F(ColorsTest, RedEyesAreMeasuredInSrgbAndTheProfileStays) {
  const Bytes profile = Wide();
  const orvo::OwnedDib portrait = Renumbered(Portrait(), profile);
  save("plain.png", portrait);
  saveWith("wide.png", portrait, profile);
  EXPECT_EQ(report("redeye plain.png -o out.png")["eyes"], 0) << "the numbers show green";
  for (const char* const words : {"redeye --mark marks wide.png -o out.png",
                                  "redeye --at 161,215,239,215 wide.png -o out.png"}) {
    const json told = report(words);
    EXPECT_EQ(told["eyes"], 2);
    EXPECT_EQ(profileOf("marks/wide-marked.png"), profile);
    EXPECT_EQ(profileOf("out.png"), profile);
    const orvo::OwnedDib after = load("out.png");
    for (const auto& [x, y] : kEyes) {
      const Color color = ColorAt(after, x, y);
      const auto tone = [&](std::size_t i) { return static_cast<std::uint8_t>(color[i]); };
      const Codes seen = Road(profile, TYPE_BGR_8)({tone(0), tone(1), tone(2)});
      EXPECT_LT(seen[2] - seen[1], 20);
    }
    const auto isInside = [&told](int x, int y) {
      return std::ranges::any_of(told["changed"], [=](const json& box) {
        return x >= box[0] && y >= box[1] && x < box[2] && y < box[3];
      });
    };
    for (int at = 0; at < kPortraitWidth * kPortraitHeight; ++at) {
      const int x = at % kPortraitWidth;
      const int y = at / kPortraitWidth;
      ASSERT_TRUE(ColorAt(portrait, x, y) == ColorAt(after, x, y) || isInside(x, y));
    }
  }
}

}  // namespace
