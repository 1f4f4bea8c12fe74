// Rectangle services. A rectangle without area shares nothing with any other.
#include <algorithm>

#include <orvo/platform.h>

int CopyRect(RECT* target, const RECT* source) {
  if (target == nullptr || source == nullptr) return 0;
  *target = *source;
  return 1;
}

int SetRect(RECT* rect, int left, int top, int right, int bottom) {
  if (rect == nullptr) return 0;
  *rect = RECT{left, top, right, bottom};
  return 1;
}

int PtInRect(const RECT* rect, POINT point) {
  return rect != nullptr && point.x >= rect->left && point.x < rect->right &&
         point.y >= rect->top && point.y < rect->bottom;
}

int IntersectRect(RECT* target, const RECT* a, const RECT* b) {
  if (target == nullptr || a == nullptr || b == nullptr) return 0;
  const RECT shared{std::max(a->left, b->left), std::max(a->top, b->top),
                    std::min(a->right, b->right), std::min(a->bottom, b->bottom)};
  const bool empty = IsRectEmpty(a) != 0 || IsRectEmpty(b) != 0 || IsRectEmpty(&shared) != 0;
  *target = empty ? RECT{0, 0, 0, 0} : shared;
  return empty ? 0 : 1;
}

int IsRectEmpty(const RECT* rect) {
  return rect == nullptr || rect->left >= rect->right || rect->top >= rect->bottom;
}
