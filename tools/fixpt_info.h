// fixpt --info: what a format is, with its bounds as exact decimals and the
// saturation patterns as they lie in the record's words.
#ifndef FIXPT_INFO_H
#define FIXPT_INFO_H

#include <cstdio>
#include <string>

#include "fixpt_format.h"

/// Prints the description of a valid format.
void printInfo(const Format& format, std::FILE* output);

/// The exact decimal of 2^exp: the format's resolution (or half of it).
std::string powerOfTwoText(int64_t exp);

#endif  // FIXPT_INFO_H
