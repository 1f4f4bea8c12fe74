// The two halves of the TIFF codec.
#ifndef MODULES_LTFIL13N_TIFF_CODEC_H
#define MODULES_LTFIL13N_TIFF_CODEC_H

#include "pictures/tiff_page.h"
#include "ltfil13n/codec.h"

namespace provider {

// Decodes the page's rows into the image and fills its palette. Vendor code.
int ReadTiffPixels(TIFF* tiff, const TiffPage& page, std::uint64_t fileBytes, const Pixels& image);

int SaveTiff(const SaveRequest& request, const LockedDib& image);

}  // namespace provider

#endif  // MODULES_LTFIL13N_TIFF_CODEC_H
