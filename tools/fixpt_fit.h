// fixpt --fit: the format a range of values needs.
#ifndef FIXPT_FIT_H
#define FIXPT_FIT_H

#include <QString>

#include <cstdio>

#include "fixpt_request.h"

struct FitResult {
    Format format;
    QString refusal;  // why no format is proposed, or empty
};

/// The format for [low, high] (finite, low <= high): signed when low < 0 or
/// signed is forced; with fit.bits the one of that width with the fewest
/// integer bits, else the narrowest whose resolution is at most
/// fit.resolution. A value is held when the quantiser, rounding as round
/// says, does not saturate it.
FitResult fitFormat(const FitRequest& fit, double low, double high, CFixedPoint::ROUND round);

/// Prints the proposal: the format described as --info does, and its worst
/// rounding error.
void printFit(const Format& format, std::FILE* output);

#endif  // FIXPT_FIT_H
