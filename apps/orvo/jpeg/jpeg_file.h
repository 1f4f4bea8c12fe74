// JPEG files as bytes: taken apart so that the coded picture can be exchanged and all else stays,
// byte for byte.
#ifndef APPS_ORVO_JPEG_JPEG_FILE_H
#define APPS_ORVO_JPEG_JPEG_FILE_H

#include <functional>
#include <span>
#include <string>

#include "bytes.h"
#include "outcome.h"

namespace client {

// Thrown, with the reason, where work without loss ends before its time.
struct NotPossible {
  std::string reason;
};

struct JpegFile {
  // What the picture's header says of its coding.
  struct Frame {
    std::uint8_t marker = 0;  // 0xC0 and on
    int bits = 0;             // of a sample
    int width = 0;            // pixels, as stored
    int height = 0;
    int components = 0;
  };

  Frame frame;
  Bytes notes;          // the segments of applications and the comments, whole and in their order
  Bytes coded;          // all other segments and the scans
  Bytes trailer;        // what follows the end mark
  std::size_t end = 0;  // where the trailer begins in the file that was taken apart

  // How the stored picture is to be turned to stand upright, 1 to 8.
  int orientation();
  // Tells that the coded picture stands upright as it is; when its sides changed places, so do its
  // densities.
  void setUpright(bool sidesSwapped);
  // Corrects an index of the pictures in the trailer, once the coded one was exchanged. `before` is
  // what the file was taken from.
  void keepFurtherPictures(std::span<const std::uint8_t> before);

 private:
  // The block of tags, which begins with its byte order; empty when there is none.
  std::span<std::uint8_t> exif();
  // The first segment of a marker whose data begin with a name, without that; empty for none.
  std::span<std::uint8_t> note(std::uint8_t marker, std::span<const std::uint8_t> name);
};

// Throws NotPossible for bytes that no whole JPEG file has.
JpegFile TakenApart(std::span<const std::uint8_t> bytes);

// Takes a JPEG file apart, lets change(bytes, file) exchange its parts, and writes the whole to the
// target, which may be the source. The target is not touched before all is written.
using ChangeJpeg = std::function<void(const Bytes& bytes, JpegFile& file)>;
Outcome ChangeFile(const std::string& source, const std::string& target, const ChangeJpeg& change);

// Whole files; these throw a ModuleError. What is written takes the place of an older file in one
// step.
Bytes ReadBytes(const std::string& path);
void WriteBytes(const std::string& path, const Bytes& bytes);

}  // namespace client

#endif  // APPS_ORVO_JPEG_JPEG_FILE_H
