#include "jpeg_coding.h"

#include <jerror.h>

#include <algorithm>
#include <new>

#include "pictures/file_handle.h"

namespace client {
namespace {

using Colors = JpegManner::Colors;

template <class Calls>
void Run(modules::JpegSession& session, j_common_ptr codec, const Calls& calls) {
  try {
    session.run(calls);
  } catch (const modules::ModuleError& error) {
    if (error.code == kModuleNoMemory) throw;
    char text[JMSG_LENGTH_MAX];
    session.errors.format_message(codec, text);
    throw NotPossible{text};
  }
}

// Where coded bytes go: the library's handle, which comes first, and what stands behind it.
struct Destination {
  jpeg_destination_mgr handle;
  Bytes bytes;

  // False when out of memory; nothing may be thrown through the library.
  bool grow() noexcept {
    constexpr std::size_t kLeast = 65536;
    const std::size_t used = bytes.size();
    try {
      bytes.resize(std::max(kLeast, 2 * used));
    } catch (const std::bad_alloc&) {
      return false;
    }
    handle.next_output_byte = bytes.data() + used;
    handle.free_in_buffer = bytes.size() - used;
    return true;
  }
};

boolean Grow(j_compress_ptr codec) {
  if (!reinterpret_cast<Destination*>(codec->dest)->grow()) {
    ERREXIT1(codec, JERR_OUT_OF_MEMORY, 0);
  }
  return TRUE;
}

class JpegOutput {
 public:
  JpegOutput() {
    modules::PrepareJpeg(session_, common());
    destination_.handle.init_destination = [](j_compress_ptr codec) { (void)Grow(codec); };
    destination_.handle.empty_output_buffer = Grow;
    destination_.handle.term_destination = [](j_compress_ptr /*codec*/) {};
  }

  // Lets write(codec) code a picture that `size` and `form` tell of.
  template <class Write>
  Bytes written(const JpegManner& manner, int width, int height, J_COLOR_SPACE form,
                const Write& write) {
    Run(session_, common(), [&] {
      jpeg_create_compress(&codec_);
      codec_.dest = &destination_.handle;
      codec_.image_width = static_cast<JDIMENSION>(width);
      codec_.image_height = static_cast<JDIMENSION>(height);
      codec_.in_color_space = form;
      codec_.input_components = static_cast<int>(manner.components.size());
      describe(manner);
      write(codec_);
      jpeg_finish_compress(&codec_);
    });
    destination_.bytes.resize(destination_.bytes.size() - destination_.handle.free_in_buffer);
    return std::move(destination_.bytes);
  }

 private:
  struct Codec : jpeg_compress_struct {
    ~Codec() { jpeg_destroy_compress(this); }
  };
  j_common_ptr common() { return reinterpret_cast<j_common_ptr>(&codec_); }

  void describe(const JpegManner& manner) {
    jpeg_set_defaults(&codec_);
    jpeg_set_colorspace(&codec_, ColorSpaceOf(manner.colors));
    for (std::size_t i = 0; i < manner.tables.size(); ++i) {
      const auto& steps = manner.tables.at(i);
      if (!steps) continue;
      JQUANT_TBL*& table = codec_.quant_tbl_ptrs[i];
      if (table == nullptr) table = jpeg_alloc_quant_table(common());
      std::copy(steps->begin(), steps->end(), table->quantval);
    }
    for (std::size_t i = 0; i < manner.components.size(); ++i) {
      const JpegManner::Component& component = manner.components[i];
      codec_.comp_info[i].component_id = component.id;
      codec_.comp_info[i].h_samp_factor = component.across;
      codec_.comp_info[i].v_samp_factor = component.down;
      codec_.comp_info[i].quant_tbl_no = static_cast<int>(component.table);
    }
    codec_.restart_interval = manner.restartInterval;
    codec_.optimize_coding = TRUE;
    if (manner.progressive) jpeg_simple_progression(&codec_);
  }

  static J_COLOR_SPACE ColorSpaceOf(Colors colors) {
    switch (colors) {
      case Colors::kTones:
        return JCS_GRAYSCALE;
      case Colors::kTonesAndTints:
        return JCS_YCbCr;
      case Colors::kRedGreenBlue:
        return JCS_RGB;
      default:
        return JCS_UNKNOWN;
    }
  }

  Destination destination_{};
  modules::JpegSession session_{nullptr};
  Codec codec_{};
};

Colors ColorsOf(J_COLOR_SPACE space) {
  switch (space) {
    case JCS_GRAYSCALE:
      return Colors::kTones;
    case JCS_YCbCr:
      return Colors::kTonesAndTints;
    case JCS_RGB:
      return Colors::kRedGreenBlue;
    default:
      return Colors::kOther;
  }
}

}  // namespace

JpegInput::JpegInput(std::span<const std::uint8_t> stream) {
  modules::PrepareJpeg(session_, common());
  Run(session_, common(), [&] {
    jpeg_create_decompress(&codec_);
    modules::WatchJpeg(session_, common());
    jpeg_mem_src(&codec_, stream.data(), static_cast<unsigned long>(stream.size()));
    (void)jpeg_read_header(&codec_, TRUE);
  });
  // Whole blocks of one tone can take less than a bit.
  constexpr std::uint64_t kMostRatio = 4096;
  const std::uint64_t samples = std::uint64_t{codec_.image_width} * codec_.image_height *
                                static_cast<std::uint64_t>(codec_.num_components);
  if (!modules::IsPlausible(samples, stream.size(), kMostRatio)) {
    throw NotPossible{"the file is too short for its picture"};
  }
}

JpegManner JpegInput::manner() const {
  JpegManner manner{.colors = ColorsOf(codec_.jpeg_color_space),
                    .progressive = codec_.progressive_mode != 0,
                    .restartInterval = codec_.restart_interval};
  for (std::size_t i = 0; i < manner.tables.size(); ++i) {
    const JQUANT_TBL* const table = codec_.quant_tbl_ptrs[i];
    if (table != nullptr) {
      std::copy_n(table->quantval, DCTSIZE2, manner.tables.at(i).emplace().begin());
    }
  }
  for (int i = 0; i < codec_.num_components; ++i) {
    const jpeg_component_info& component = codec_.comp_info[i];
    manner.components.push_back({.id = component.component_id,
                                 .across = component.h_samp_factor,
                                 .down = component.v_samp_factor,
                                 .table = static_cast<std::size_t>(component.quant_tbl_no)});
  }
  return manner;
}

void JpegInput::readCoefficients() {
  Run(session_, common(), [this] { coefficients_ = jpeg_read_coefficients(&codec_); });
  for (int i = 0; i < codec_.num_components; ++i) {
    const jpeg_component_info& component = codec_.comp_info[i];
    const JQUANT_TBL* const last = codec_.quant_tbl_ptrs[component.quant_tbl_no];
    if (!std::equal(last->quantval, last->quantval + DCTSIZE2, component.quant_table->quantval)) {
      throw NotPossible{"its quantisation tables change between scans"};
    }
  }
}

JBLOCKROW JpegInput::blocks(int component, JDIMENSION row) {
  JBLOCKROW blocks = nullptr;
  Run(session_, common(), [&] {
    constexpr boolean kToBeWritten = TRUE;
    blocks =
        *codec_.mem->access_virt_barray(common(), coefficients_[component], row, 1, kToBeWritten);
  });
  return blocks;
}

Bytes JpegInput::written(const JpegManner& manner) {
  return JpegOutput().written(
      manner, static_cast<int>(codec_.image_width), static_cast<int>(codec_.image_height),
      codec_.jpeg_color_space,
      [this](jpeg_compress_struct& output) { jpeg_write_coefficients(&output, coefficients_); });
}

Bytes Encoded(const JpegManner& manner, const modules::LockedDib& picture, const RECT& part) {
  const bool inTones = modules::BytesAreTones(*picture);
  if (!inTones && picture->depth != 24) throw NotPossible{"JPEG has no pictures of this depth"};
  const auto offset = static_cast<std::size_t>(part.left * picture->depth / 8);
  return JpegOutput().written(manner, part.right - part.left, part.bottom - part.top,
                              inTones ? JCS_GRAYSCALE : JCS_EXT_BGR,
                              [&](jpeg_compress_struct& output) {
                                modules::DescribeDensity(output, picture.header());
                                jpeg_start_compress(&output, TRUE);
                                for (int top = part.top; top < part.bottom; ++top) {
                                  JSAMPROW row = picture->row(picture->height - 1 - top) + offset;
                                  (void)jpeg_write_scanlines(&output, &row, 1);
                                }
                              });
}

}  // namespace client
