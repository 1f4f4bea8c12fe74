// What a file holds beside the one picture that is taken of it.
#ifndef APPS_ORVO_PAGES_FURTHER_PICTURES_H
#define APPS_ORVO_PAGES_FURTHER_PICTURES_H

#include <string>
#include <string_view>

namespace client {

struct FurtherPictures {
  int count = 0;
  std::string_view what = {};  // one of them, in words
  bool merged = false;         // they show in the picture, but no longer for themselves
};

// Of animations, collections and layers, counted without decoding; the pages of TIFF files are no
// such. A file that cannot be followed has as many as were met.
FurtherPictures FurtherPicturesOf(const std::string& path);

}  // namespace client

#endif  // APPS_ORVO_PAGES_FURTHER_PICTURES_H
