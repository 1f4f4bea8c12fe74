// Sanitizers make pixel work some ten times slower; sweeps are then shorter.
#ifndef TESTS_IMAGING_REDEYE_BUILD_KIND_H
#define TESTS_IMAGING_REDEYE_BUILD_KIND_H

#if defined(__SANITIZE_ADDRESS__)
constexpr bool kSanitized = true;
#else
constexpr bool kSanitized = false;
#endif

#endif  // TESTS_IMAGING_REDEYE_BUILD_KIND_H
