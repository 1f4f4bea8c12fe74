// Made-up bytes as an image file: described, loaded, and shrunk to a thumbnail.
#include <sys/mman.h>
#include <unistd.h>

#include <cstdlib>
#include <string>

#include <orvo/orvo.h>

#include "platform/fault_injection.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static COrvoInstance* const toolkit = CreateORVOInstance();
  const int file = memfd_create("picture", 0);
  if (file < 0 || write(file, data, size) != static_cast<ssize_t>(size)) std::abort();
  const std::string path = "/proc/self/fd/" + std::to_string(file);
  const std::size_t blocks = PlatformLiveBlocks();
  {
    ORVOIMAGEFILEINFO info{};
    toolkit->ImageFileInfo(path.c_str(), &info);
    orvo::OwnedDib picture;
    toolkit->LoadFile(path.c_str(), picture.receive());
    orvo::OwnedDib thumbnail;
    toolkit->CreateThumbnailFromFile(path.c_str(), thumbnail.receive(), 20, 20);
  }
  close(file);
  if (PlatformHeldLocks() != 0 || PlatformLiveBlocks() != blocks) std::abort();
  return 0;
}
