// Photoshop's records: the way in which JPEG, TIFF and Photoshop files hold IPTC, among others.
#ifndef APPS_ORVO_METADATA_PHOTOSHOP_RESOURCES_H
#define APPS_ORVO_METADATA_PHOTOSHOP_RESOURCES_H

#include <vector>

#include "bytes.h"

namespace client {

enum PhotoshopId : std::uint16_t {
  kPhotoshopResolution = 1005,
  kPhotoshopIptc = 1028,
  kPhotoshopThumbnailBgr = 1033,
  kPhotoshopThumbnail = 1036,
  kPhotoshopProfile = 1039,
  kPhotoshopExif = 1058,
  kPhotoshopXmp = 1060,
};

struct PhotoshopResource {
  std::uint16_t id;
  Bytes name;  // its length first, filled up to an even number of bytes
  Bytes data;
};
using PhotoshopResources = std::vector<PhotoshopResource>;

// As far as the list is whole.
PhotoshopResources ReadPhotoshop(View list);
Bytes WritePhotoshop(const PhotoshopResources& resources);

// Takes the record out of the list; empty when there is none.
Bytes TakePhotoshop(PhotoshopResources& resources, std::uint16_t id);
void AddPhotoshop(PhotoshopResources& resources, std::uint16_t id, View data);

}  // namespace client

#endif  // APPS_ORVO_METADATA_PHOTOSHOP_RESOURCES_H
