// What is on its way from one file to another.
#ifndef APPS_ORVO_METADATA_CARRIED_H
#define APPS_ORVO_METADATA_CARRIED_H

#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "jpeg_head.h"
#include "photoshop_resources.h"
#include "png_text.h"
#include "tag_directory.h"

namespace client {

struct Carried {
  Bytes exif;                         // begins with its byte order
  std::string xmp;                    // the packet
  PhotoshopResources photoshop;       // IPTC is one of them
  Bytes profile;                      // of the colours
  std::vector<std::string> comments;  // of a JPEG file, in an encoding that it does not tell
  std::vector<PngText> texts;         // of a PNG file

  // What only a file of the same kind can hold, as it was.
  std::vector<JpegSegment> segments;
  Bytes density;                 // of a JPEG file: unit, then 16 bits across and down
  std::vector<PngChunk> chunks;  // the texts among them
  TagDirectory resolution;       // of a TIFF file
  ByteOrder resolutionOrder = ByteOrder::kLittle;

  std::vector<std::string> lost;  // in words, a line each

  void lose(std::string_view what, std::string_view why) {
    lost.push_back(std::string(what) + ": " + std::string(why));
  }
  // Leaves the profile out where it explains other colours than the result's: "RGB", "GRAY" ...
  void fitProfile(std::string_view colors);
  // Tells those of what is carried that a kind of file cannot hold, and drops them.
  void loseSegments(std::string_view kind);
  void loseChunks(std::string_view kind);
  void loseTexts(std::string_view kind);
  void loseAll(std::string_view kind);
};

// Each reads all that a file of its kind holds; throws MetadataFault when that cannot be followed.
void ReadAttachedMetadata(const std::string& path, Carried& carried);
void ReadGifMetadata(const std::string& path, Carried& carried);
void ReadJpegMetadata(const std::string& path, Carried& carried);
void ReadPngMetadata(const std::string& path, Carried& carried);
void ReadPhotoshopMetadata(const std::string& path, Carried& carried);
// `last`, if any, is where a walk through the pages goes on from.
void ReadTiffMetadata(const std::string& path, int page, Carried& carried,
                      PagePlace* last = nullptr);
void ReadWebpMetadata(const std::string& path, Carried& carried);

// Each gives all to a finished file that its kind can hold, and tells what it cannot; throws
// MetadataFault when the file cannot be written anew.
void WriteJpegMetadata(const std::string& path, Carried& carried);
void WritePngMetadata(const std::string& path, Carried& carried);
void WritePhotoshopMetadata(const std::string& path, Carried& carried);
void WriteTiffMetadata(const std::string& path, int page, Carried& carried,
                       PagePlace* last = nullptr);
void WriteWebpMetadata(const std::string& path, Carried& carried);

}  // namespace client

#endif  // APPS_ORVO_METADATA_CARRIED_H
