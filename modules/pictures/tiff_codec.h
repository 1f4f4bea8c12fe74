// The two halves of the TIFF codec.
#ifndef MODULES_PICTURES_TIFF_CODEC_H
#define MODULES_PICTURES_TIFF_CODEC_H

#include "pictures/formats.h"
#include "pictures/tiff_page.h"

namespace modules {

// Decodes the page's rows into the image and fills its palette. Module code.
int ReadTiffPixels(TIFF* tiff, const TiffPage& page, std::uint64_t fileBytes, const Pixels& image);

int SaveTiff(const SaveRequest& request, const LockedDib& image);

}  // namespace modules

#endif  // MODULES_PICTURES_TIFF_CODEC_H
