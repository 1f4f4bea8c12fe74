#include "pictures/frame_counts.h"

#include <algorithm>

#include "pictures/file_handle.h"
#include "pictures/libraries.h"
#include "pictures/loaded_library.h"

#if defined(ORVO_HAVE_HEIF)
#include <libheif/heif.h>
#endif
#if defined(ORVO_HAVE_JXL)
#include <jxl/decode.h>
#endif

namespace modules {
namespace {

// What `count` gives for the file's bytes; 1 when it throws.
template <class Count>
int CountIn(const char* path, const Count& count) {
  int pictures = 1;
  (void)Guarded([&] {
    pictures = std::max(count(ReadWhole(path)), 1);
    return kModuleSuccess;
  });
  return pictures;
}

#if defined(ORVO_HAVE_HEIF)
int HeifPictures(const std::vector<std::uint8_t>& file) {
  static const struct {
    LoadedLibrary library{kHeifLibrary};
    ORVO_LIBRARY_CALL(heif_context_alloc);
    ORVO_LIBRARY_CALL(heif_context_free);
    ORVO_LIBRARY_CALL(heif_context_read_from_memory_without_copy);
    ORVO_LIBRARY_CALL(heif_context_get_number_of_top_level_images);
  } calls;
  const std::unique_ptr<heif_context, decltype(calls.heif_context_free)> context(
      calls.heif_context_alloc(), calls.heif_context_free);
  const heif_error error = calls.heif_context_read_from_memory_without_copy(
      context.get(), file.data(), file.size(), nullptr);
  Require(error.code == heif_error_Ok, kFileFormatDamaged);
  return calls.heif_context_get_number_of_top_level_images(context.get());
}
#endif

#if defined(ORVO_HAVE_JXL)
int JxlFrames(const std::vector<std::uint8_t>& file) {
  static const struct {
    LoadedLibrary library{kJxlLibrary};
    ORVO_LIBRARY_CALL(JxlDecoderCreate);
    ORVO_LIBRARY_CALL(JxlDecoderDestroy);
    ORVO_LIBRARY_CALL(JxlDecoderSubscribeEvents);
    ORVO_LIBRARY_CALL(JxlDecoderSetInput);
    ORVO_LIBRARY_CALL(JxlDecoderCloseInput);
    ORVO_LIBRARY_CALL(JxlDecoderProcessInput);
  } calls;
  const std::unique_ptr<JxlDecoder, decltype(calls.JxlDecoderDestroy)> decoder(
      calls.JxlDecoderCreate(nullptr), calls.JxlDecoderDestroy);
  // Of frames alone, the decoder skips what it is not asked for.
  Require(calls.JxlDecoderSubscribeEvents(decoder.get(), JXL_DEC_FRAME) == JXL_DEC_SUCCESS &&
              calls.JxlDecoderSetInput(decoder.get(), file.data(), file.size()) == JXL_DEC_SUCCESS,
          kFileFormatDamaged);
  calls.JxlDecoderCloseInput(decoder.get());
  int frames = 0;
  while (calls.JxlDecoderProcessInput(decoder.get()) == JXL_DEC_FRAME) ++frames;
  return frames;
}
#endif

}  // namespace

int CountHeifPictures([[maybe_unused]] const char* path) {
#if defined(ORVO_HAVE_HEIF)
  return CountIn(path, HeifPictures);
#else
  return 1;
#endif
}

int CountJxlFrames([[maybe_unused]] const char* path) {
#if defined(ORVO_HAVE_JXL)
  return CountIn(path, JxlFrames);
#else
  return 1;
#endif
}

}  // namespace modules
