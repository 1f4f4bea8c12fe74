// What commands found, for people or as JSON. Both show the same names.
#ifndef APPS_ORVO_REPORTS_H
#define APPS_ORVO_REPORTS_H

#include <nlohmann/json.hpp>
#include <string>

#include "operations.h"

namespace client {

// The whole of one call: the command and the values of its options, defaults included.
nlohmann::ordered_json StartDocument(const Operation& operation, const Parameters& parameters);

// On standard output. Bytes of file names that are no UTF-8 are replaced.
void PrintJson(const nlohmann::ordered_json& document);

// "name: value" lines on standard output, under a heading if there is one; a bare text as it is.
void PrintText(const std::string& heading, const nlohmann::ordered_json& report);

}  // namespace client

#endif  // APPS_ORVO_REPORTS_H
