// fixpt: running a parsed request, from its input to its exit status.
#ifndef FIXPT_RUN_H
#define FIXPT_RUN_H

#include <cstdio>
#include <string>

#include "fixpt_request.h"

/// Runs the request on batchInput (stdin's text; unused outside batch mode),
/// writing results to output and refusals to errors ("fixpt: ..."). Returns
/// the exit status; after a refusal nothing has been written to output.
int runRequest(const Request& request, const std::string& batchInput, std::FILE* output, std::FILE* errors);

#endif  // FIXPT_RUN_H
