// GraphicsMagick's calls, from the library that is loaded when the first file of a rare kind is
// met.
#ifndef MODULES_PICTURES_MAGICK_LIBRARY_H
#define MODULES_PICTURES_MAGICK_LIBRARY_H

#include <magick/api.h>

#include "pictures/libraries.h"
#include "pictures/loaded_library.h"

namespace modules {

struct MagickLibrary {
  // Each number of bits a tone has a library of its own; the types of the headers fit one of them.
  static_assert(QuantumDepth == 16);
  LoadedLibrary library{kMagickLibrary};

  ORVO_LIBRARY_CALL(InitializeMagickEx);
  ORVO_LIBRARY_CALL(MagickAllocFunctions);
  ORVO_LIBRARY_CALL(MagickFree);
  ORVO_LIBRARY_CALL(MagickSetConfirmAccessHandler);
  ORVO_LIBRARY_CALL(SetErrorHandler);
  ORVO_LIBRARY_CALL(SetFatalErrorHandler);
  ORVO_LIBRARY_CALL(SetLogDefaultLogMethod);
  ORVO_LIBRARY_CALL(SetMagickResourceLimit);
  ORVO_LIBRARY_CALL(SetMonitorHandler);
  ORVO_LIBRARY_CALL(SetWarningHandler);

  ORVO_LIBRARY_CALL(GetMagickInfoArray);
  ORVO_LIBRARY_CALL(GetTypeInfo);
  ORVO_LIBRARY_CALL(UnregisterMagickInfo);

  ORVO_LIBRARY_CALL(DestroyExceptionInfo);
  ORVO_LIBRARY_CALL(GetExceptionInfo);
  ORVO_LIBRARY_CALL(ThrowException);

  ORVO_LIBRARY_CALL(AllocateImage);
  ORVO_LIBRARY_CALL(BlobToImage);
  ORVO_LIBRARY_CALL(CloneImageInfo);
  ORVO_LIBRARY_CALL(DestroyImageInfo);
  ORVO_LIBRARY_CALL(DestroyImageList);
  ORVO_LIBRARY_CALL(GetLastImageInList);
  ORVO_LIBRARY_CALL(ImageToBlob);
  ORVO_LIBRARY_CALL(PingBlob);

  ORVO_LIBRARY_CALL(AccessImmutableIndexes);
  ORVO_LIBRARY_CALL(AccessMutableIndexes);
  ORVO_LIBRARY_CALL(AcquireImagePixels);
  ORVO_LIBRARY_CALL(AllocateImageColormap);
  ORVO_LIBRARY_CALL(SetImagePixels);
  ORVO_LIBRARY_CALL(SyncImagePixels);
};

// Throws kFileFormatNotRead without the library.
const MagickLibrary& Magick();

}  // namespace modules

#endif  // MODULES_PICTURES_MAGICK_LIBRARY_H
