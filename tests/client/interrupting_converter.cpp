// A colour converter that presses Ctrl-C while it works: as often as the picture is wide.
#include <csignal>

#include <orvo/dib.h>

extern "C" __attribute__((visibility("default"))) void vnColorConvertDIB(void* packedDib) {
  const int times = orvo::DibHeaderOf(packedDib).biWidth;
  for (int i = 0; i < times; ++i) std::raise(SIGINT);
}
