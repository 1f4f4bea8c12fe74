// HEIC and AVIF: the primary picture, turned and cut as the file says.
#include <libheif/heif.h>

#include <algorithm>
#include <array>
#include <string_view>

#include "pictures/codecs.h"
#include "pictures/exif.h"
#include "pictures/libraries.h"
#include "pictures/loaded_library.h"
#include "pictures/whole_reader.h"

namespace modules {
namespace {

struct Decoding {
  LoadedLibrary library{kHeifLibrary};
  ORVO_LIBRARY_CALL(heif_context_alloc);
  ORVO_LIBRARY_CALL(heif_context_free);
  ORVO_LIBRARY_CALL(heif_context_read_from_memory_without_copy);
  ORVO_LIBRARY_CALL(heif_context_get_primary_image_handle);
  ORVO_LIBRARY_CALL(heif_image_handle_release);
  ORVO_LIBRARY_CALL(heif_image_handle_get_width);
  ORVO_LIBRARY_CALL(heif_image_handle_get_height);
  ORVO_LIBRARY_CALL(heif_image_handle_has_alpha_channel);
  ORVO_LIBRARY_CALL(heif_decoding_options_alloc);
  ORVO_LIBRARY_CALL(heif_decoding_options_free);
  ORVO_LIBRARY_CALL(heif_decode_image);
  ORVO_LIBRARY_CALL(heif_image_get_width);
  ORVO_LIBRARY_CALL(heif_image_get_height);
  ORVO_LIBRARY_CALL(heif_image_get_plane_readonly);
  ORVO_LIBRARY_CALL(heif_image_release);
  ORVO_LIBRARY_CALL(heif_image_handle_get_number_of_metadata_blocks);
  ORVO_LIBRARY_CALL(heif_image_handle_get_list_of_metadata_block_IDs);
  ORVO_LIBRARY_CALL(heif_image_handle_get_metadata_type);
  ORVO_LIBRARY_CALL(heif_image_handle_get_metadata_content_type);
  ORVO_LIBRARY_CALL(heif_image_handle_get_metadata_size);
  ORVO_LIBRARY_CALL(heif_image_handle_get_metadata);
  ORVO_LIBRARY_CALL(heif_image_handle_get_raw_color_profile_size);
  ORVO_LIBRARY_CALL(heif_image_handle_get_raw_color_profile);
  ORVO_LIBRARY_CALL(heif_image_handle_get_nclx_color_profile);
  ORVO_LIBRARY_CALL(heif_nclx_color_profile_free);
};
const Decoding& TheDecoding() {
  static const Decoding decoding;
  return decoding;
}

struct Ends {
  void operator()(heif_context* file) const { TheDecoding().heif_context_free(file); }
  void operator()(heif_image_handle* item) const { TheDecoding().heif_image_handle_release(item); }
  void operator()(heif_image* image) const { TheDecoding().heif_image_release(image); }
  void operator()(heif_decoding_options* options) const {
    TheDecoding().heif_decoding_options_free(options);
  }
};
template <class Part>
using Owned = std::unique_ptr<Part, Ends>;

void Check(const heif_error& error) {
  if (error.code == heif_error_Ok) return;
  const bool unknown = error.code == heif_error_Unsupported_feature ||
                       error.code == heif_error_Unsupported_filetype ||
                       error.code == heif_error_Decoder_plugin_error;
  const bool memory = error.code == heif_error_Memory_allocation_error;
  throw ModuleError{memory ? kModuleNoMemory : unknown ? kFileFormatNotRead : kFileFormatDamaged};
}

class HeifReader : public WholeReader {
 public:
  using WholeReader::WholeReader;

  bool readHeader(int page) override {
    if (page != 1) return false;
    file_ = ReadWhole(path_);
    const Decoding& calls = TheDecoding();
    context_.reset(calls.heif_context_alloc());
    Require(context_, kModuleNoMemory);
    Check(calls.heif_context_read_from_memory_without_copy(context_.get(), file_.data(),
                                                           file_.size(), nullptr));
    heif_image_handle* item = nullptr;
    Check(calls.heif_context_get_primary_image_handle(context_.get(), &item));
    item_.reset(item);
    picture_.compression = "HEIF";
    describe(calls.heif_image_handle_get_width(item), calls.heif_image_handle_get_height(item),
             calls.heif_image_handle_has_alpha_channel(item) != 0);
    return true;
  }

  void start() override {
    makeRoom(1);
    const Decoding& calls = TheDecoding();
    const Owned<heif_decoding_options> options(calls.heif_decoding_options_alloc());
    Require(options, kModuleNoMemory);
    options->convert_hdr_to_8bit = 1;
    heif_image* decoded = nullptr;
    Check(calls.heif_decode_image(
        item_.get(), &decoded, heif_colorspace_RGB,
        picture_.hasAlpha ? heif_chroma_interleaved_RGBA : heif_chroma_interleaved_RGB,
        options.get()));
    const Owned<heif_image> image(decoded);
    copyRows(*image);
    redFirst_ = true;
    endStep();
  }

  // What cannot be read is left out.
  [[nodiscard]] Attachments attachments() const override {
    const Decoding& calls = TheDecoding();
    Attachments found;
    for (const heif_item_id id : blocks()) {
      const std::string_view type = calls.heif_image_handle_get_metadata_type(item_.get(), id);
      const std::string_view content =
          calls.heif_image_handle_get_metadata_content_type(item_.get(), id);
      if (type == "Exif" && found.exif.empty()) found.exif = TagsBehindPlace(block(id));
      if (type == "mime" && content == "application/rdf+xml" && found.xmp.empty()) {
        const std::vector<std::uint8_t> packet = block(id);
        found.xmp.assign(packet.begin(), packet.end());
      }
    }
    takeColors(found);
    return found;
  }

 private:
  [[nodiscard]] std::vector<heif_item_id> blocks() const {
    const Decoding& calls = TheDecoding();
    std::vector<heif_item_id> ids(static_cast<std::size_t>(
        calls.heif_image_handle_get_number_of_metadata_blocks(item_.get(), nullptr)));
    (void)calls.heif_image_handle_get_list_of_metadata_block_IDs(item_.get(), nullptr, ids.data(),
                                                                 static_cast<int>(ids.size()));
    return ids;
  }

  [[nodiscard]] std::vector<std::uint8_t> block(heif_item_id id) const {
    const Decoding& calls = TheDecoding();
    std::vector<std::uint8_t> bytes(calls.heif_image_handle_get_metadata_size(item_.get(), id));
    const heif_error error = calls.heif_image_handle_get_metadata(item_.get(), id, bytes.data());
    return error.code == heif_error_Ok ? bytes : std::vector<std::uint8_t>();
  }

  void takeColors(Attachments& found) const {
    const Decoding& calls = TheDecoding();
    found.profile.resize(calls.heif_image_handle_get_raw_color_profile_size(item_.get()));
    if (!found.profile.empty()) {
      (void)calls.heif_image_handle_get_raw_color_profile(item_.get(), found.profile.data());
      return;
    }
    heif_color_profile_nclx* codes = nullptr;
    (void)calls.heif_image_handle_get_nclx_color_profile(item_.get(), &codes);
    if (codes == nullptr) return;
    found.primaries = codes->color_primaries;
    found.transfer = codes->transfer_characteristics;
    calls.heif_nclx_color_profile_free(codes);
  }

  void copyRows(const heif_image& image) {
    int stride = 0;
    const Decoding& calls = TheDecoding();
    const std::uint8_t* row =
        calls.heif_image_get_plane_readonly(&image, heif_channel_interleaved, &stride);
    Require(row != nullptr &&
                calls.heif_image_get_width(&image, heif_channel_interleaved) == picture_.width &&
                calls.heif_image_get_height(&image, heif_channel_interleaved) == picture_.height,
            kFileFormatDamaged);
    auto to = pixels_.begin();
    for (int y = 0; y < picture_.height; ++y, row += stride) {
      to = std::copy_n(row, picture_.rowBytes(), to);
    }
  }

  Owned<heif_context> context_;
  Owned<heif_image_handle> item_;
};

}  // namespace

// The brand says the kind; "mif1" and "msf1" leave it to the ones behind it.
bool IsHeif(Head head) {
  constexpr std::size_t kMarkAt = 4;
  constexpr std::size_t kBrandAt = 8;
  constexpr std::array<std::string_view, 10> kBrands{"heic", "heix", "hevc", "hevx", "heim",
                                                     "heis", "mif1", "msf1", "avif", "avis"};
  if (head.size() < kBrandAt + 4) return false;
  const std::string_view text(reinterpret_cast<const char*>(head.data()), kBrandAt + 4);
  return text.substr(kMarkAt, 4) == "ftyp" &&
         std::ranges::find(kBrands, text.substr(kBrandAt)) != kBrands.end();
}

ReaderHandle OpenHeif(const char* path, Report report) {
  return std::make_unique<HeifReader>(path, report);
}

}  // namespace modules
