// Loads a photograph, sharpens it and saves it; the formats follow from the files' names.
//
//   fix_photo in.jpg out.png
#include <cstdio>

#include <orvo/orvo.h>

int main(int argc, char** argv) {
  if (argc != 3) {
    std::fprintf(stderr, "usage: %s <photograph> <result>\n", argv[0]);
    return 2;
  }
  orvo::OwnedInstance toolkit;
  if (!toolkit) {
    std::fprintf(stderr, "out of memory\n");
    return 1;
  }

  orvo::OwnedDib photo;
  orvo::OwnedDib sharp;
  const char* file = argv[1];
  int code = toolkit->LoadFile(file, photo.receive());
  if (code == ORVO_OK) code = toolkit->SharpnessAdjust(photo.get(), sharp.receive(photo), 7);
  if (code == ORVO_OK) {
    file = argv[2];
    code = toolkit->SaveFile(sharp.get(), file, 0, 0);
  }
  if (code == ORVO_OK) return 0;
  std::fprintf(stderr, "%s: %s (%s)\n", file, OrvoResultText(code), OrvoResultName(code));
  return 1;
}
