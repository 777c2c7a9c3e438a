// fixpt --batch: a table of values or patterns in, a CSV table out.
#ifndef FIXPT_BATCH_H
#define FIXPT_BATCH_H

#include <QString>

#include <cstdio>
#include <string>
#include <vector>

#include "fixpt_request.h"

/// Longest line a batch may hold, line end excluded.
constexpr size_t maxBatchLine = 1024;

struct BatchInput {
    std::vector<Item> items;
    QString refusal;  // the first bad line, named by number; then items is empty
};

/// Reads every line of text as an item of the request's mode; blank lines and
/// lines starting with '#' are skipped, blanks around an item ignored.
BatchInput readBatch(const Request& request, const std::string& text);

/// Writes the CSV header and one row per item. Returns whether any row
/// counts under --strict.
bool writeBatch(const Request& request, const std::vector<Item>& items, std::FILE* output);

#endif  // FIXPT_BATCH_H
