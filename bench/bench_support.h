// Shared pieces of the benchmark suite: the widths every operation is run
// at, the format chosen for a width, reproducible input tables, and the
// registration helper that names every case "operation/implementation/width"
// (the report script splits on those slashes).
#ifndef FIXEDPOINT_BENCH_SUPPORT_H
#define FIXEDPOINT_BENCH_SUPPORT_H

#include <benchmark/benchmark.h>

#include <cmath>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "lib_fixed_c.h"

namespace bench {

/// Widths of the width-parameterised cases.
inline const std::vector<int> widths = {16, 32, 48, 64, 100, 160};

/// Inputs per table; a power of two so the index wraps with a mask. Large
/// enough that branch predictors cannot learn the sequence, small enough to
/// stay in the first-level cache.
constexpr std::size_t tableSize = 1024;
constexpr std::size_t tableMask = tableSize - 1;

/// A signed format of the given width with half its bits integer bits.
struct Format {
    int bits;
    int intbits;
    int fracbits;
};

inline Format formatFor(int bits)
{
    return {bits, bits / 2, bits - bits / 2};
}

/// Doubles spread over the integer range of the format (mostly inside it,
/// some beyond so that saturation is exercised), with fractional parts.
inline std::vector<double> valuesFor(const Format& format, unsigned seed)
{
    std::mt19937_64 random(seed);
    const double span = std::ldexp(1.0, format.intbits - 1);
    std::uniform_real_distribution<double> pick(-1.1 * span, 1.1 * span);
    std::vector<double> values(tableSize);
    for (double& value : values)
        value = pick(random);
    return values;
}

/// The same doubles as records of the format (round to nearest, saturate).
inline std::vector<Fixed::fixed> recordsFor(const Format& format, unsigned seed)
{
    std::vector<Fixed::fixed> records;
    records.reserve(tableSize);
    for (double value : valuesFor(format, seed))
        records.push_back(Fixed::double2fixed(value, format.intbits, format.fracbits, 1, 1, 0));
    return records;
}

/// Registers body under "operation/implementation/label".
template <typename Body>
void add(const std::string& operation, const std::string& implementation, const std::string& label,
         Body body)
{
    const std::string name = operation + "/" + implementation + "/" + label;
    benchmark::RegisterBenchmark(name.c_str(), std::move(body));
}

template <typename Body>
void add(const std::string& operation, const std::string& implementation, int width, Body body)
{
    add(operation, implementation, std::to_string(width), std::move(body));
}

/// The timed loop of a case: op on successive entries of the table, its
/// result kept from the optimiser.
template <typename Table, typename Operation>
void runOver(benchmark::State& state, const Table& table, Operation op)
{
    std::size_t i = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(op(table[i]));
        i = (i + 1) & tableMask;
    }
}

/// The timed loop of a two-operand case: op on successive pairs of entries.
template <typename TableA, typename TableB, typename Operation>
void runOverPairs(benchmark::State& state, const TableA& a, const TableB& b, Operation op)
{
    std::size_t i = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(op(a[i], b[i]));
        i = (i + 1) & tableMask;
    }
}

/// Runs once at static initialisation; each source file registers its cases
/// with one of these.
struct Registration {
    template <typename Register>
    explicit Registration(Register registerCases)
    {
        registerCases();
    }
};

}  // namespace bench

#endif  // FIXEDPOINT_BENCH_SUPPORT_H
