// fixpt --batch: a table of values in, a CSV table out.
#ifndef FIXPT_BATCH_H
#define FIXPT_BATCH_H

#include <cstdio>

#include "fixpt_request.h"

/// Reads every value from input (one per line; blank lines and lines starting
/// with '#' skipped) and writes one CSV row per value to output, after a
/// header. A line that is not a number is a usage error naming its line
/// number; it is detected before any row is written. Returns whether any value
/// (or its --to conversion) saturated.
bool runBatch(const Request& request, std::FILE* input, std::FILE* output);

#endif  // FIXPT_BATCH_H
