// SystemC counterparts of the benchmark inputs: the same doubles as sc_fix
// values of the same format, rounded to nearest and saturated like the
// library's records.
#ifndef FIXEDPOINT_BENCH_SYSTEMC_SUPPORT_H
#define FIXEDPOINT_BENCH_SYSTEMC_SUPPORT_H

#include <systemc>

#include "bench_support.h"

namespace bench {

inline std::vector<sc_dt::sc_fix> scFixesFor(const Format& format, unsigned seed)
{
    std::vector<sc_dt::sc_fix> out;
    out.reserve(tableSize);
    for (double value : valuesFor(format, seed))
        out.emplace_back(value, format.bits, format.intbits, sc_dt::SC_RND, sc_dt::SC_SAT);
    return out;
}

}  // namespace bench

#endif  // FIXEDPOINT_BENCH_SYSTEMC_SUPPORT_H
