// Owners for C++ callers: images and an instance that release themselves.
//
//   orvo::OwnedInstance toolkit;
//   orvo::OwnedDib photo, sharp;
//   if (toolkit->LoadFile("in.jpg", photo.receive()) == ORVO_OK &&
//       toolkit->SharpnessAdjust(photo.get(), sharp.receive(photo), 7) == ORVO_OK) {
//     toolkit->SaveFile(sharp.get(), "out.png", 0, 0);
//   }
#ifndef ORVO_RAII_H
#define ORVO_RAII_H

#include <orvo/dib_block.h>
#include <orvo/instance.h>

namespace orvo {

// Owns one COrvoInstance; test it before use, it is empty when memory ran out.
class OwnedInstance {
 public:
  OwnedInstance() : instance_(CreateORVOInstance()) {}
  OwnedInstance(const OwnedInstance&) = delete;
  OwnedInstance& operator=(const OwnedInstance&) = delete;
  ~OwnedInstance() { DestroyORVOInstance(instance_); }

  COrvoInstance* operator->() const { return instance_; }
  COrvoInstance* get() const { return instance_; }
  explicit operator bool() const { return instance_ != nullptr; }

 private:
  COrvoInstance* instance_;
};

}  // namespace orvo

#endif  // ORVO_RAII_H
