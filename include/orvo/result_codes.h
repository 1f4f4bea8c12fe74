// The result codes of every operation, with their names and meanings.
//
//   if (int code = toolkit->Invert(source, &result, nullptr); code != ORVO_OK) {
//     std::fprintf(stderr, "%s: %s\n", OrvoResultName(code), OrvoResultText(code));
//   }
#ifndef ORVO_RESULT_CODES_H
#define ORVO_RESULT_CODES_H

enum OrvoResultCode : int {
  ORVO_OK = 0,
  ORVO_ERR_FAILURE = 1,
  ORVO_ERR_NO_MEMORY = 2,
  ORVO_ERR_BAD_DEPTH = 4,
  ORVO_ERR_BAD_ARGUMENT = 6,
  ORVO_ERR_OUT_OF_RANGE = 7,
  ORVO_ERR_NO_BITMAP = 8,
  ORVO_ERR_NULL_IMAGE = 9,
  ORVO_ERR_FILE_IO = 10,
  ORVO_ERR_FILE_NOT_FOUND = 11,
  ORVO_ERR_FILE_OPEN = 12,
  ORVO_ERR_BAD_FILE = 13,
  ORVO_ERR_BAD_FORMAT = 14,
  ORVO_ERR_NOT_SUPPORTED = 15,
  ORVO_ERR_CANCELLED = 16,
  ORVO_ERR_VENDOR = 17,
  ORVO_ERR_NO_CONVERTER = 18,
  ORVO_ERR_BUFFER_TOO_SMALL = 19,
  ORVO_ERR_NO_VENDOR = 20,
};

struct OrvoResultDescription {
  int code;
  const char* name;
  const char* text;
};

inline constexpr OrvoResultDescription kOrvoResults[] = {
    {ORVO_OK, "ORVO_OK", "success"},
    {ORVO_ERR_FAILURE, "ORVO_ERR_FAILURE", "general failure, or nothing was found"},
    {ORVO_ERR_NO_MEMORY, "ORVO_ERR_NO_MEMORY", "out of memory"},
    {ORVO_ERR_BAD_DEPTH, "ORVO_ERR_BAD_DEPTH",
     "the image's depth is not one that this operation takes"},
    {ORVO_ERR_BAD_ARGUMENT, "ORVO_ERR_BAD_ARGUMENT",
     "a required pointer is null, or the arguments do not suit the image"},
    {ORVO_ERR_OUT_OF_RANGE, "ORVO_ERR_OUT_OF_RANGE", "a number lies outside its range"},
    {ORVO_ERR_NO_BITMAP, "ORVO_ERR_NO_BITMAP", "there is no usable image"},
    {ORVO_ERR_NULL_IMAGE, "ORVO_ERR_NULL_IMAGE", "the source handle is null"},
    {ORVO_ERR_FILE_IO, "ORVO_ERR_FILE_IO", "reading or writing the file failed midway"},
    {ORVO_ERR_FILE_NOT_FOUND, "ORVO_ERR_FILE_NOT_FOUND", "the file does not exist"},
    {ORVO_ERR_FILE_OPEN, "ORVO_ERR_FILE_OPEN", "the file cannot be opened"},
    {ORVO_ERR_BAD_FILE, "ORVO_ERR_BAD_FILE", "the file cannot be used"},
    {ORVO_ERR_BAD_FORMAT, "ORVO_ERR_BAD_FORMAT", "files of this kind cannot be handled"},
    {ORVO_ERR_NOT_SUPPORTED, "ORVO_ERR_NOT_SUPPORTED", "the request is not supported"},
    {ORVO_ERR_CANCELLED, "ORVO_ERR_CANCELLED", "stopped by the status callback"},
    {ORVO_ERR_VENDOR, "ORVO_ERR_VENDOR", "the imaging module failed"},
    {ORVO_ERR_NO_CONVERTER, "ORVO_ERR_NO_CONVERTER", "the colour converter cannot be used"},
    {ORVO_ERR_BUFFER_TOO_SMALL, "ORVO_ERR_BUFFER_TOO_SMALL",
     "the buffer or its size does not serve"},
    {ORVO_ERR_NO_VENDOR, "ORVO_ERR_NO_VENDOR",
     "an imaging module that the operation needs is missing"},
};

// The code's name, such as "ORVO_ERR_BAD_DEPTH"; "unknown" for a number outside the table.
inline const char* OrvoResultName(int code) {
  for (const OrvoResultDescription& row : kOrvoResults) {
    if (row.code == code) return row.name;
  }
  return "unknown";
}

// What the code means, in a few words of English.
inline const char* OrvoResultText(int code) {
  for (const OrvoResultDescription& row : kOrvoResults) {
    if (row.code == code) return row.text;
  }
  return "unknown result code";
}

#endif  // ORVO_RESULT_CODES_H
