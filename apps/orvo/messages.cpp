#include "messages.h"

#include <iostream>

#include <orvo/result_codes.h>

#include "progress.h"

namespace client {

void Tell(std::string_view text) {
  ClearProgress();
  std::cerr << "orvo: " << Printable(text) << '\n';
}

std::string Printable(std::string_view text) {
  constexpr std::string_view kDigits = "0123456789abcdef";
  std::string shown;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const auto byte = static_cast<unsigned char>(text[i]);
    const unsigned char next = i + 1 < text.size() ? static_cast<unsigned char>(text[i + 1]) : 0;
    const bool startsControl = byte == 0xC2 && next >= 0x80 && next < 0xA0;  // U+0080 to U+009F
    if (byte == '\n') {
      shown += "\\n";
    } else if (byte < ' ' || byte == 0x7F || startsControl) {
      shown += {'\\', 'x', kDigits[byte >> 4], kDigits[byte & 15]};
    } else {
      shown += text[i];
    }
    if (startsControl) shown += {'\\', 'x', kDigits[next >> 4], kDigits[next & 15]}, ++i;
  }
  return shown;
}

void TellFailure(std::string_view file, int code, std::string_view hint) {
  std::string text(file);
  text += ": ";
  text += OrvoResultName(code);
  text += ": ";
  text += OrvoResultText(code);
  if (!hint.empty()) {
    text += " (";
    text += hint;
    text += ')';
  }
  Tell(text);
}

void TellWarning(std::string_view file, std::string_view text) {
  Tell("warning: " + std::string(file) + ": " + std::string(text));
}

}  // namespace client
