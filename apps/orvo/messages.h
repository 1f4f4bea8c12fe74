// Lines for people, on standard error, each begun with the program's name. Plain text: no colours,
// and nothing in a file's name reaches a terminal but what it shows.
#ifndef APPS_ORVO_MESSAGES_H
#define APPS_ORVO_MESSAGES_H

#include <string>
#include <string_view>

namespace client {

// "orvo: FILE: CODE: what it means (hint)"
void TellFailure(std::string_view file, int code, std::string_view hint);
void TellWarning(std::string_view file, std::string_view text);
void Tell(std::string_view text);

// The text with its control characters spelled out, such as \n or \x1b.
std::string Printable(std::string_view text);

}  // namespace client

#endif  // APPS_ORVO_MESSAGES_H
