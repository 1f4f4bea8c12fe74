// Plain BMP files, written and read without the toolkit.
#ifndef TESTS_CLIENT_BMP_FILES_H
#define TESTS_CLIENT_BMP_FILES_H

#include <array>
#include <string>

#include <orvo/raii.h>

// Blue, green and red.
using Color = std::array<int, 3>;

// The bytes of a file that holds the picture.
std::string BmpOf(const orvo::OwnedDib& picture);

// The picture in the bytes of an uncompressed file; empty when they are none.
orvo::OwnedDib PictureIn(const std::string& bmp);

// A pixel counted from the top left, through the palette where there is one of 8 bits.
Color ColorAt(const orvo::OwnedDib& picture, int x, int y);

#endif  // TESTS_CLIENT_BMP_FILES_H
