// What commands found, on standard output, for people or as JSON. Both show the same names.
#ifndef APPS_ORVO_REPORTS_H
#define APPS_ORVO_REPORTS_H

#include <string>

#include "operations.h"

namespace client {

// The command of a call and the values of its options, defaults included.
Report ReportOfCall(const Operation& operation, const Parameters& parameters);

// Bytes of file names that are no UTF-8 are replaced.
void PrintJson(const Report& report);

// "name: value" lines, under a heading if there is one; a bare text as it is.
void PrintText(const std::string& heading, const Report& report);

}  // namespace client

#endif  // APPS_ORVO_REPORTS_H
