#include "double_log.h"

#include <algorithm>

#include <orvo/result_codes.h>

namespace doubles {

State& TheState() {
  static State state;
  return state;
}

void Reset() {
  TheState() = State();
}

std::string Text(const void* pointer) {
  if (pointer == nullptr) return "0";
  const auto name = TheState().names.find(pointer);
  return name == TheState().names.end() ? "?" : name->second;
}

std::string Text(const struct_LEAD_Bitmap* bitmap) {
  std::vector<const void*>& known = TheState().bitmaps;
  const auto found = std::find(known.begin(), known.end(), bitmap);
  const auto place = found - known.begin();
  if (found == known.end()) known.push_back(bitmap);
  return std::string("b").append(std::to_string(place + 1));
}

int Answer(const char* function, const std::vector<std::string>& arguments) {
  State& state = TheState();
  std::string line(function);
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    line.append(i == 0 ? "(" : ", ").append(arguments[i]);
  }
  state.log.push_back(line.append(arguments.empty() ? "()" : ")"));
  std::deque<int>& answers = state.answers[function];
  if (answers.empty()) return kModuleSuccess;
  const int code = answers.front();
  answers.pop_front();
  return code;
}

int Operate(int code, const struct_LEAD_Bitmap* bitmap) {
  const StatusCallback callback = TheState().installed;
  if (callback != nullptr && callback(50, nullptr) == ORVO_ERR_CANCELLED) return kModuleAborted;
  if (code != kModuleSuccess) return code;
  auto* const bytes = static_cast<std::uint8_t*>(GlobalLock(bitmap->block));
  if (const auto layout = orvo::DibLayoutOf(bytes, GlobalSize(bitmap->block))) {
    std::for_each(bytes + layout->pixelOffset, bytes + layout->totalBytes,
                  [](std::uint8_t& byte) { byte = static_cast<std::uint8_t>(~byte); });
  }
  if (bytes != nullptr) GlobalUnlock(bitmap->block);
  return kModuleSuccess;
}

void Hold(struct_LEAD_Bitmap* bitmap, DibHandle block) {
  *bitmap = {};
  bitmap->block = block;
  const void* const bytes = GlobalLock(block);
  if (const auto layout = orvo::DibLayoutOf(bytes, GlobalSize(block))) {
    const BITMAPINFOHEADER header = orvo::DibHeaderOf(bytes);
    bitmap->width = layout->width;
    bitmap->height = layout->height;
    bitmap->bitsPerPixel = layout->depth;
    bitmap->xResolution = orvo::DotsPerInch(header.biXPelsPerMeter);
    bitmap->yResolution = orvo::DotsPerInch(header.biYPelsPerMeter);
  }
  if (bytes != nullptr) GlobalUnlock(block);
}

DibHandle CopyOfBlock(DibHandle block) {
  const std::size_t size = GlobalSize(block);
  void* const copy = size == 0 ? nullptr : GlobalAlloc(orvo::kDibBlockFlags, size);
  if (copy == nullptr) return nullptr;
  const void* const from = GlobalLock(block);
  void* const to = GlobalLock(copy);
  const bool locked = from != nullptr && to != nullptr;
  if (locked) std::memcpy(to, from, size);
  if (from != nullptr) GlobalUnlock(block);
  if (to != nullptr) GlobalUnlock(copy);
  if (locked) return copy;
  GlobalFree(copy);
  return nullptr;
}

}  // namespace doubles
