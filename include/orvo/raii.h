// Owners for C++ callers: a handle and an instance that release themselves.
//
//   orvo::OwnedInstance toolkit;
//   orvo::OwnedDib photo, sharp;
//   if (toolkit->LoadFile("in.jpg", photo.receive()) == ORVO_OK &&
//       toolkit->SharpnessAdjust(photo.get(), sharp.receive(photo), 7) == ORVO_OK) {
//     toolkit->SaveFile(sharp.get(), "out.png", 0, 0);
//   }
#ifndef ORVO_RAII_H
#define ORVO_RAII_H

#include <utility>

#include <orvo/instance.h>

namespace orvo {

// Owns one DibHandle. A failing operation often leaves its source in the result handle; receive()
// takes the owners of the sources, so that the block then stays with the owner that had it.
class OwnedDib {
 public:
  OwnedDib() = default;
  explicit OwnedDib(DibHandle handle) : handle_(handle) {}
  OwnedDib(OwnedDib&& other) noexcept : handle_(other.release()) {}
  OwnedDib& operator=(OwnedDib&& other) noexcept {
    if (this != &other) reset(other.release());
    return *this;
  }
  OwnedDib(const OwnedDib&) = delete;
  OwnedDib& operator=(const OwnedDib&) = delete;
  ~OwnedDib() { reset(); }

  DibHandle get() const { return handle_; }
  explicit operator bool() const { return handle_ != nullptr; }

  DibHandle release() { return std::exchange(handle_, nullptr); }
  void reset(DibHandle handle = nullptr) {
    if (handle_ != nullptr && handle_ != handle) GlobalFree(handle_);
    handle_ = handle;
  }

  // The variable itself, for operations in place that may change the handle.
  DibHandle* address() { return &handle_; }

  // Takes the result of one call: frees what this owner held, and keeps what the call stored unless
  // that is the source's own block.
  class Receiver {
   public:
    Receiver(OwnedDib& owner, DibHandle source) : owner_(owner), source_(source) {}
    Receiver(const Receiver&) = delete;
    Receiver& operator=(const Receiver&) = delete;
    ~Receiver() {
      if (value_ != nullptr && value_ != source_) owner_.reset(value_);
    }
    operator DibHandle*() { return &value_; }  // NOLINT(google-explicit-constructor)

   private:
    OwnedDib& owner_;
    DibHandle source_;
    DibHandle value_ = nullptr;
  };
  Receiver receive() {
    reset();
    return {*this, nullptr};
  }
  Receiver receive(const OwnedDib& source) {
    if (&source != this) reset();
    return {*this, source.get()};
  }

 private:
  DibHandle handle_ = nullptr;
};

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
