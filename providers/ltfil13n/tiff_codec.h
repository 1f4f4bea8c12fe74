// The two halves of the TIFF codec.
#ifndef PROVIDERS_LTFIL13N_TIFF_CODEC_H
#define PROVIDERS_LTFIL13N_TIFF_CODEC_H

#include "files/tiff_page.h"
#include "ltfil13n/codec.h"

namespace provider {

// Decodes the page's rows into the image and fills its palette. Vendor code.
int ReadTiffPixels(TIFF* tiff, const TiffPage& page, std::uint64_t fileBytes, const Pixels& image);

int SaveTiff(const SaveRequest& request, const LockedDib& image);

}  // namespace provider

#endif  // PROVIDERS_LTFIL13N_TIFF_CODEC_H
