// Loading and saving a 12-megapixel photograph through the table, beside the codec libraries alone
// on the same file: straight into, and out of, a buffer of rows.
#include <benchmark/benchmark.h>
#include <jpeglib.h>
#include <png.h>
#include <tiffio.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <memory>
#include <string>

#include <orvo/orvo.h>

#include "pictures.h"

namespace {

namespace fs = std::filesystem;

constexpr int kQuality = 90;
constexpr std::size_t kStride = std::size_t{bench::kPhotoWidth} * 3;

// The photograph as a block, and as a file of each kind in a folder that goes at the end.
class Photo {
 public:
  static Photo& get() {
    static Photo photo;
    return photo;
  }
  [[nodiscard]] std::string path(const char* extension) const {
    return (folder_ / "photo").string() + extension;
  }

  orvo::OwnedInstance toolkit;
  orvo::OwnedDib dib;
  std::vector<std::uint8_t> rows;

 private:
  Photo()
      : rows(bench::Photo(bench::kPhotoWidth, bench::kPhotoHeight, 3)),
        folder_(fs::temp_directory_path() / ("orvo_files_bench_" + std::to_string(getpid()))) {
    fs::create_directories(folder_);
    dib = orvo::NewDib(orvo::DibHeaderFor(bench::kPhotoWidth, bench::kPhotoHeight, 24));
    std::memcpy(orvo::LockedImage(dib.get()).pixels(), rows.data(), rows.size());
    for (const char* const extension : {".jpg", ".png", ".tif", ".bmp"}) {
      toolkit->SaveFile(dib.get(), path(extension).c_str(), 0, kQuality);
    }
  }
  ~Photo() {
    std::error_code ignored;
    fs::remove_all(folder_, ignored);
  }

  fs::path folder_;
};

struct File {
  File(const std::string& path, const char* mode) : stream(std::fopen(path.c_str(), mode)) {}
  ~File() { std::fclose(stream); }
  File(const File&) = delete;
  File& operator=(const File&) = delete;
  std::FILE* stream;
};

void LoadJpeg(const std::string& path, std::uint8_t* rows) {
  const File file(path, "rb");
  jpeg_decompress_struct session{};
  jpeg_error_mgr errors{};
  session.err = jpeg_std_error(&errors);
  jpeg_create_decompress(&session);
  jpeg_stdio_src(&session, file.stream);
  jpeg_read_header(&session, TRUE);
  session.out_color_space = JCS_EXT_BGR;
  jpeg_start_decompress(&session);
  while (session.output_scanline < session.output_height) {
    JSAMPROW row = rows + kStride * session.output_scanline;
    jpeg_read_scanlines(&session, &row, 1);
  }
  jpeg_finish_decompress(&session);
  jpeg_destroy_decompress(&session);
}

void SaveJpeg(const std::string& path, const std::uint8_t* rows) {
  const File file(path, "wb");
  jpeg_compress_struct session{};
  jpeg_error_mgr errors{};
  session.err = jpeg_std_error(&errors);
  jpeg_create_compress(&session);
  jpeg_stdio_dest(&session, file.stream);
  session.image_width = bench::kPhotoWidth;
  session.image_height = bench::kPhotoHeight;
  session.input_components = 3;
  session.in_color_space = JCS_EXT_BGR;
  jpeg_set_defaults(&session);
  jpeg_set_quality(&session, kQuality, TRUE);
  // Colours at full resolution, as the file module writes them at this quality.
  session.comp_info[0].h_samp_factor = session.comp_info[0].v_samp_factor = 1;
  jpeg_start_compress(&session, TRUE);
  while (session.next_scanline < session.image_height) {
    JSAMPROW row = const_cast<JSAMPROW>(rows + kStride * session.next_scanline);
    jpeg_write_scanlines(&session, &row, 1);
  }
  jpeg_finish_compress(&session);
  jpeg_destroy_compress(&session);
}

void LoadPng(const std::string& path, std::uint8_t* rows) {
  png_image image{};
  image.version = PNG_IMAGE_VERSION;
  png_image_begin_read_from_file(&image, path.c_str());
  image.format = PNG_FORMAT_BGR;
  png_image_finish_read(&image, nullptr, rows, 0, nullptr);
}

void SavePng(const std::string& path, const std::uint8_t* rows) {
  png_image image{};
  image.version = PNG_IMAGE_VERSION;
  image.width = bench::kPhotoWidth;
  image.height = bench::kPhotoHeight;
  image.format = PNG_FORMAT_BGR;
  png_image_write_to_file(&image, path.c_str(), 0, rows, 0, nullptr);
}

void LoadTiff(const std::string& path, std::uint8_t* rows) {
  TIFF* const tiff = TIFFOpen(path.c_str(), "r");
  for (tstrip_t strip = 0; strip < TIFFNumberOfStrips(tiff); ++strip) {
    const tmsize_t read = TIFFReadEncodedStrip(tiff, strip, rows, -1);
    for (tmsize_t i = 0; i + 2 < read; i += 3) std::swap(rows[i], rows[i + 2]);
    rows += read;
  }
  TIFFClose(tiff);
}

void SaveTiff(const std::string& path, const std::uint8_t* rows) {
  TIFF* const tiff = TIFFOpen(path.c_str(), "w");
  TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, bench::kPhotoWidth);
  TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, bench::kPhotoHeight);
  TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, 8);
  TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, 3);
  TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_RGB);
  TIFFSetField(tiff, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
  constexpr std::uint32_t kRowsPerStrip = 20;
  TIFFSetField(tiff, TIFFTAG_ROWSPERSTRIP, kRowsPerStrip);
  std::vector<std::uint8_t> strip(kStride * kRowsPerStrip);
  for (std::uint32_t y = 0; y < bench::kPhotoHeight; y += kRowsPerStrip) {
    for (std::size_t i = 0; i < strip.size(); ++i) {
      strip[i] = rows[kStride * y + i / 3 * 3 + 2 - i % 3];
    }
    TIFFWriteEncodedStrip(tiff, y / kRowsPerStrip, strip.data(),
                          static_cast<tmsize_t>(strip.size()));
  }
  TIFFClose(tiff);
}

void LoadBmp(const std::string& path, std::uint8_t* rows) {
  constexpr long kPixelsAt = 54;
  const File file(path, "rb");
  std::fseek(file.stream, kPixelsAt, SEEK_SET);
  benchmark::DoNotOptimize(std::fread(rows, 1, kStride * bench::kPhotoHeight, file.stream));
}

void SaveBmp(const std::string& path, const std::uint8_t* rows) {
  const File file(path, "wb");
  std::fwrite(rows, 1, kStride * bench::kPhotoHeight, file.stream);
}

struct Kind {
  const char* extension;
  void (*load)(const std::string&, std::uint8_t*);
  void (*save)(const std::string&, const std::uint8_t*);
};
constexpr Kind kKinds[] = {{".jpg", LoadJpeg, SaveJpeg},
                           {".png", LoadPng, SavePng},
                           {".tif", LoadTiff, SaveTiff},
                           {".bmp", LoadBmp, SaveBmp}};

const Kind& KindOf(benchmark::State& state) {
  const Kind& kind = kKinds[state.range(0)];
  state.SetLabel(kind.extension);
  return kind;
}

void Load(benchmark::State& state) {
  Photo& photo = Photo::get();
  const std::string path = photo.path(KindOf(state).extension);
  for (auto _ : state) {
    DibHandle dib = nullptr;
    if (photo.toolkit->LoadFile(path.c_str(), &dib) != ORVO_OK) state.SkipWithError("not loaded");
    GlobalFree(dib);
  }
}

void LoadByCodec(benchmark::State& state) {
  const Kind& kind = KindOf(state);
  const std::string path = Photo::get().path(kind.extension);
  for (auto _ : state) {
    const std::unique_ptr<std::uint8_t, decltype(&std::free)> rows(
        static_cast<std::uint8_t*>(std::malloc(kStride * bench::kPhotoHeight)), std::free);
    kind.load(path, rows.get());
    benchmark::ClobberMemory();
  }
}

void Save(benchmark::State& state) {
  Photo& photo = Photo::get();
  const std::string path = photo.path("_saved") + KindOf(state).extension;
  for (auto _ : state) {
    if (photo.toolkit->SaveFile(photo.dib.get(), path.c_str(), 0, kQuality) != ORVO_OK) {
      state.SkipWithError("not saved");
    }
  }
}

void SaveByCodec(benchmark::State& state) {
  const Kind& kind = KindOf(state);
  const std::string path = Photo::get().path("_codec") + kind.extension;
  for (auto _ : state) kind.save(path, Photo::get().rows.data());
}

#define ORVO_FILE_BENCHMARK(name) \
  BENCHMARK(name)->DenseRange(0, 3)->Unit(benchmark::kMillisecond)->UseRealTime()
ORVO_FILE_BENCHMARK(Load);
ORVO_FILE_BENCHMARK(LoadByCodec);
ORVO_FILE_BENCHMARK(Save);
ORVO_FILE_BENCHMARK(SaveByCodec);

}  // namespace
