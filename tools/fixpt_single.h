// fixpt: one value or pattern, printed as "key: value" lines.
#ifndef FIXPT_SINGLE_H
#define FIXPT_SINGLE_H

#include <cstdio>

#include "fixpt_request.h"

/// Quantises or decodes the request's item (and reformats it with --to) and
/// prints it. Returns whether anything counts under --strict.
bool runSingle(const Request& request, std::FILE* output);

/// Prints one "key: value" line, the value starting in a common column.
void printField(std::FILE* output, const std::string& key, const std::string& value);

#endif  // FIXPT_SINGLE_H
