#include "pictures/attachments.h"

#include <array>

#include "pictures/codecs.h"
#include "pictures/file_handle.h"

namespace modules {
namespace {

ReaderHandle Open([[maybe_unused]] const char* path, [[maybe_unused]] Head head) {
#if defined(ORVO_HAVE_HEIF)
  if (IsHeif(head)) return OpenHeif(path, nullptr);
#endif
#if defined(ORVO_HAVE_JXL)
  if (IsJxl(head)) return OpenJxl(path, nullptr);
#endif
  return nullptr;
}

}  // namespace

Attachments ReadAttachments(const char* path) {
  std::array<std::uint8_t, kHeadBytes> head{};
  const std::size_t bytes = std::fread(head.data(), 1, head.size(), OpenToRead(path).get());
  const ReaderHandle reader = Open(path, Head(head).first(bytes));
  return reader && reader->goTo(1) ? reader->attachments() : Attachments();
}

}  // namespace modules
