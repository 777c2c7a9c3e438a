// fixpt: one input item, a value to quantise or a pattern to decode, read
// from an argument or a batch line.
#ifndef FIXPT_ITEM_H
#define FIXPT_ITEM_H

#include <QString>

#include <string>

#include "fixpt_format.h"
#include "fixpt_number.h"
#include "fixpt_pattern.h"

/// What the tool does with its input.
enum class Mode { Quantise, Decode, Info, Fit };

struct Item {
    Number number = {0.0, false};  // Quantise and Fit
    Pattern pattern = {};          // Decode
};

/// Reads text as the mode's item: a number, or a pattern of the format's
/// width (Decode), or a finite number (Fit). Returns an empty text, or why
/// text is refused.
QString readItem(Mode mode, const std::string& text, const Format& format, Item* item);

#endif  // FIXPT_ITEM_H
