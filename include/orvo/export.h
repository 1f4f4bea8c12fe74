// Marks what the shared library exports.
#ifndef ORVO_EXPORT_H
#define ORVO_EXPORT_H

#if defined(_WIN32)
#if defined(ORVO_BUILDING)
#define ORVO_API __declspec(dllexport)
#else
#define ORVO_API __declspec(dllimport)
#endif
#else
#define ORVO_API __attribute__((visibility("default")))
#endif

#endif  // ORVO_EXPORT_H
