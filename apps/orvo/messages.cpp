#include "messages.h"

#include <iostream>

#include <orvo/result_codes.h>

#include "progress.h"

namespace client {

void Tell(std::string_view text) {
  ClearProgress();
  std::cerr << "orvo: " << text << '\n';
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
