// Of HEIC, AVIF and JPEG XL files, which their libraries take apart.
#include "carried.h"
#include "file_access.h"
#include "made_profile.h"
#include "pictures/attachments.h"

namespace client {

void ReadAttachedMetadata(const std::string& path, Carried& carried) {
  try {
    modules::Attachments found = modules::ReadAttachments(path.c_str());
    carried.exif = std::move(found.exif);
    carried.xmp = std::move(found.xmp);
    carried.profile = std::move(found.profile);
    if (carried.profile.empty()) {
      carried.profile = ProfileOfCodes(found.primaries, found.transfer);
    }
  } catch (const modules::ModuleError&) {
    throw MetadataFault("it cannot be read");
  }
}

}  // namespace client
