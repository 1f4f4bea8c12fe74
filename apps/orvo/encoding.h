// A finished picture as a file of its target's kind, in the manner of its source.
#ifndef APPS_ORVO_ENCODING_H
#define APPS_ORVO_ENCODING_H

#include <string>

#include "metadata.h"
#include "operations.h"

namespace client {

// Writes job.image with all that the source holds beside it. What cannot be kept is said. A JPEG
// file keeps the quality and the sampling of a JPEG source, and its very blocks where nothing
// changed; a TIFF file keeps the compression of a TIFF source, and has one without loss otherwise.
int Encode(Job& job, const std::string& path);
// The same as a file of another kind than the target's.
int EncodeAs(const std::string& kind, Job& job, const std::string& path);

// A page on its way through a command.
struct Passage {
  int page;  // of the source
  Shape before;
  Shape after;
  bool inSrgb = false;  // it was brought there
};

// What is to be carried over of the source; the result is not named.
MetadataRequest RequestFor(Job& job, const Passage& passage);

// Gives a page of a finished file what the source holds beside the picture, and tells what cannot
// be kept. Throws MetadataFault when the file cannot be written anew.
std::vector<std::string> TakeMetadata(Job& job, const Passage& passage, const std::string& path,
                                      int resultPage, PagePlace* resultPlace = nullptr);

// The same to the one page of a file, and says what is lost. A result code of the toolkit.
int Complete(Job& job, const std::string& path, const Passage& passage);

// Says on one line what could not be kept; of many pages with the same losses once.
void TellLosses(Job& job, const std::vector<std::string>& losses);

}  // namespace client

#endif  // APPS_ORVO_ENCODING_H
